#pragma once

#include "SQL/Scope/KNSQLTokens.h"

/// A token of a text that is formatted, including comments, and how it follows the one before.
struct KNSQLFormatToken
{
    SQLTokenKind kind = SQLTokenKind::Word;
    KNSQLRole role = KNSQLRole::None;
    QString text;              ///< in the case in which it is printed
    QString word;              ///< in upper case; null if it is not a word
    qsizetype match = -1;      ///< of "(" and CASE: the index of the end
    qsizetype inlineEnd = 0;   ///< the length of all tokens up to this one, on one line
    qsizetype hardBreaks = 0;  ///< how many tokens up to this one need a line break
    bool hasSpace = false;     ///< before it, if both are on one line
    bool needsBreak = false;   ///< before it
    bool hasBlankLine = false; ///< before it, in the source
    bool startsStatement = false;

    bool isComment() const { return kind == SQLTokenKind::LineComment || kind == SQLTokenKind::BlockComment; }
    bool is(QChar character) const
    {
        return kind == SQLTokenKind::Operator && text.size() == 1 && text[0] == character;
    }
};

/// Reads a batch for the formatter. Pure; linear in the length of the text.
QList<KNSQLFormatToken> KNReadFormatTokens(const QString &batch, const KNSQLDialect &dialect);
