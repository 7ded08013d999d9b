#pragma once

#include <QString>
#include <QStringList>

/// A text of T-SQL taken apart: enough to tell code from strings, comments and quoted names, and to find what is left open.
struct BackingQueryScan
{
    QString code;        ///< the text with strings and comments blanked; bracketed names stay
    QStringList strings; ///< contents of the strings, with doubled apostrophes made single
    QString problem;     ///< what does not balance, and in which line; empty when all does
};

/// Takes a text apart. Knows '...' with '', [...] with ]], -- and nested /* */. A double quote in code is a problem: what it
/// means depends on a session option.
BackingQueryScan scanBackingQuery(const QString &text);
