#pragma once

#include <QString>

/// A piece of text that the editor inserts for a name. Its text has tab stops: $1, ${2:default}, and $0 for
/// the cursor in the end; equal numbers have equal texts, and $$ is a dollar sign. A tab at the beginning of
/// a line is a level of indentation.
struct KNSnippet
{
    QString name;
    QString title; ///< one line about it; may be empty
    QString text;  ///< its lines end with LF

    friend bool operator==(const KNSnippet &, const KNSnippet &) = default;
};
