#pragma once

#include <QHash>
#include <QSet>
#include <QString>

/// The words of a server's language that the formatter must know beside their roles, in upper case.
struct KNSQLFormatRules
{
    QSet<QString> reservedWords; ///< are no names without quotes, so that their case has no meaning
    QHash<QString, QSet<QString>>
        wordsBehind;              ///< further words without a meaning of case, by the word before
    QSet<QString> separators;     ///< must not come to stand alone in a line
    QSet<QString> blockBegins;    ///< begin a block of statements
    QSet<QString> notBehindBlock; ///< follow such a word where it begins no block
    QSet<QString> conditions;     ///< begin a statement that governs the next one
    QSet<QString> alternatives;   ///< separate the two statements of a condition
    QSet<QString> connectives;    ///< join conditions
    QSet<QString> rangeOperators; ///< are followed by an operand, a connective and another operand
};
