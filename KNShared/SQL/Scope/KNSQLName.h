#pragma once

#include "SQL/Scope/KNSQLTokens.h"

/// Reads names from tokens.
namespace KNSQLName {

/// Whether the token can be a name: a word without a role there, or a quoted name.
bool isName(const KNSQLTokens &tokens, qsizetype index);
/// Whether the token is this operator.
bool is(const KNSQLTokens &tokens, qsizetype index, QChar character);
/// The name of a token without its quotes.
QString text(const KNSQLTokens &tokens, qsizetype index);
KNSHARED_EXPORT QString withoutQuotes(QStringView name);

/// A name of several parts and the index behind it.
struct Path
{
    QStringList parts;
    qsizetype end;
};
/// Reads the name that begins at a token, up to `end`.
Path path(const KNSQLTokens &tokens, qsizetype index, qsizetype end);

/// Reads the type that begins at a token, up to `end`. Returns the index behind it.
qsizetype type(const KNSQLTokens &tokens, qsizetype index, qsizetype end, QString *text);

/// The index behind the parenthesis that closes the one at `index`; `end` if none does.
qsizetype behindParentheses(const KNSQLTokens &tokens, qsizetype index, qsizetype end);

} // namespace KNSQLName
