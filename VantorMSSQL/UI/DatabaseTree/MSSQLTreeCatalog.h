#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"

#include <initializer_list>
#include <utility>

/// What the entries of the tree have in common when they turn to the catalog queries.
namespace MSSQLTreeCatalog {

/// The settings of an entry of this connector.
const MSSQLDatabaseConnectionDetails &settings(const KNDatabaseTreeEntry &entry);

/// The catalog query, or template, with this title. The topmost entry above `entry` is asked, whose server
/// version is known once the tree is loaded: menus on the UI thread do not wait for a server.
QString text(const KNDatabaseTreeEntry &entry, const char *title);

/// `text` with its placeholders filled by names, which stand inside of literals: apostrophes are doubled.
QString filled(QString text, std::initializer_list<std::pair<const char *, QString>> names);

/// `error` in the domain of a load, with the same code and facts.
KNError wrapped(const KNError &error, const char *domain);

/// Orders names as the user's language does, without regard to case; null counts as empty.
int compareNames(const QString &left, const QString &right);

} // namespace MSSQLTreeCatalog
