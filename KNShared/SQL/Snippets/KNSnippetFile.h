#pragma once

#include "Foundation/KNError.h"
#include "SQL/Snippets/KNSnippet.h"

#include <QList>

struct KNSQLDialect;

/// The snippets of a language in JSON: a list of objects with "name", "title" and "text", the text as a list
/// of lines.
namespace KNSnippetFile {

constexpr qsizetype LongestName = 100;
constexpr qsizetype LongestText = 100'000;
constexpr qsizetype MostSnippets = 1'000;

/// Reads snippets; none, with an error, if the data are something else or two have the same name. Pure.
KNSHARED_EXPORT QList<KNSnippet> parse(const QByteArray &json, KNError *error);

/// The user's own file for a language.
KNSHARED_EXPORT QString path(const KNSQLDialect &dialect);
/// Returns the user's snippets, or those of the dialect if the user has no file. With an error also returns
/// those of the dialect. Blocks; any thread.
KNSHARED_EXPORT QList<KNSnippet> read(const KNSQLDialect &dialect, KNError *error);
/// Replaces the user's file, which only the user can read, or removes it if the snippets are those of the
/// dialect. A file that cannot be read stays as it is. False with an error on failure. Blocks; any thread.
KNSHARED_EXPORT bool write(const KNSQLDialect &dialect, const QList<KNSnippet> &snippets, KNError *error);

} // namespace KNSnippetFile
