#pragma once

#include "UI/KNSharedUIExport.h"

#include <QRegularExpression>

/// What is looked for in a text, and how.
struct KNSHAREDUI_EXPORT KNTextSearch
{
    QString pattern;
    bool isRegularExpression = false;
    bool matchesCase = false;
    bool wholeWords = false;

    /// The expression that finds it; invalid, with a reason, when the pattern is. The anchors ^ and $ hold
    /// at each line, whatever ends it.
    QRegularExpression expression() const;
    /// Where the reason points to in the pattern; -1 when the pattern is valid.
    qsizetype errorOffset() const;
    /// What takes the place of a match: the text as it is, or, with a regular expression, with \\1 or $1 for
    /// what a group has found, \\0 or $0 for all of it, \\n and \\t for line feed and tab.
    QString replacement(const QRegularExpressionMatch &match, const QString &text) const;

    friend bool operator==(const KNTextSearch &, const KNTextSearch &) = default;
};
