#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QMap>

/// What the entries of the tree have in common when they turn to the catalog queries.
namespace MSSQLTreeCatalog {

/// The settings of an entry of this connector.
const MSSQLDatabaseConnectionDetails &settings(const KNDatabaseTreeEntry &entry);

/// The catalog query, or template, with this title, its placeholders filled. The topmost entry above `entry`
/// is asked, whose server version is known once the tree is loaded: menus on the UI thread do not wait for a
/// server.
QString text(const KNDatabaseTreeEntry &entry, const char *title, const QMap<QString, QString> &values = {});

/// Orders names as the user's language does, without regard to case; null counts as empty.
int compareNames(const QString &left, const QString &right);

} // namespace MSSQLTreeCatalog
