#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <QMap>

/// Shared functions of the tree's entries for catalog queries.
namespace MSSQLTreeCatalog {

/// Returns the connection settings of an entry of this connector.
const MSSQLDatabaseConnectionDetails &settings(const KNDatabaseTreeEntry &entry);

/// Returns the catalog query, or template, with this title, with its placeholders filled. Uses the root entry
/// above `entry`, whose server version is known once the tree is loaded: menus on the UI thread do not wait
/// for a server.
QString text(const KNDatabaseTreeEntry &entry, const char *title, const QMap<QString, QString> &values = {});

/// Returns a loader of the properties of a table, view, procedure, function, trigger or constraint.
KNObjectPropertiesLoader objectProperties(const KNDatabaseTreeEntry &entry, const QString &schema,
                                          const QString &object);

/// Opens the designer of the table that contains the entry; does nothing below a view.
void openDesigner(const KNDatabaseTreeEntry &entry);

/// Compares names by the user's locale, without regard to case; null equals empty.
int compareNames(const QString &left, const QString &right);

} // namespace MSSQLTreeCatalog
