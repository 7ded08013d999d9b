#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Object names in the syntax of statements: "schema.[table]".
namespace MSSQLObjectPath {

/// The name in brackets, even where they are not required; "]" is doubled.
QString bracketed(QString name);

/// The parts joined by dots, each in brackets where required, "]" doubled. An empty part is left out, its dot
/// is not: "", "t" gives ".t".
QString quoted(const QStringList &parts);

/// Whether the whole text is a path that a server parses as exactly these parts. Words without brackets must
/// be regular identifiers and no reserved words.
bool reads(const QString &text, const QStringList &parts);

/// The parts joined by dots, without quoting if a server parses them correctly, otherwise quoted().
QString readable(const QStringList &parts);

/// Splits a path as people enter it, such as schema.table. A part in brackets or double quotes is taken
/// without them, and any other up to the next dot as it is, even if a statement would need brackets. nullopt
/// if a part is empty or its bracket or quote is not closed.
std::optional<QStringList> entered(const QString &path);

/// The path of a table: its first and its last part. A single part may hold a schema, a dot and a name.
/// Escaped by MSSQLClient if a server parses that correctly, otherwise quoted().
QString ofTable(const QStringList &path);

} // namespace MSSQLObjectPath
