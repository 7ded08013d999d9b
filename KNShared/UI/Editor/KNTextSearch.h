#pragma once

#include "UI/KNSharedUIExport.h"

#include <QRegularExpression>

/// A search pattern and its options.
struct KNSHAREDUI_EXPORT KNTextSearch
{
    QString pattern;
    bool isRegularExpression = false;
    bool matchesCase = false;
    bool wholeWords = false;

    /// The regular expression of the search; invalid, with a reason, if the pattern is. The anchors ^ and $
    /// match at each line, for any kind of line end.
    QRegularExpression expression() const;
    /// The position of the error in the pattern; -1 if the pattern is valid.
    qsizetype errorOffset() const;
    /// The replacement of a match: the text unchanged, or, with a regular expression, \\1 or $1 replaced with
    /// a group, \\0 or $0 with the whole match, \\n and \\t with line feed and tab.
    QString replacement(const QRegularExpressionMatch &match, const QString &text) const;

    friend bool operator==(const KNTextSearch &, const KNTextSearch &) = default;
};
