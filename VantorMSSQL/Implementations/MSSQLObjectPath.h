#pragma once

#include <QString>
#include <QStringList>

/// Names of objects as statements hold them: "schema.[table]".
namespace MSSQLObjectPath {

/// The name in brackets, needed or not, "]" doubled.
QString bracketed(QString name);

/// The parts with dots between them, each in brackets where it needs them, "]" doubled. An empty part is
/// left out, its dot is not: "", "t" gives ".t".
QString quoted(const QStringList &parts);

/// Whether the text is a path and nothing else, and a server reads these very parts in it. Words without
/// brackets count when they are regular identifiers and no keywords.
bool reads(const QString &text, const QStringList &parts);

/// The parts with dots between them as they are where a server reads them so, and quoted() otherwise.
QString readable(const QStringList &parts);

/// The path of a table: its first and its last part. A single part may hold a schema, a dot and a name.
/// Escaped by MSSQLClient where a server reads that rightly, and quoted() otherwise.
QString ofTable(const QStringList &path);

} // namespace MSSQLObjectPath
