#pragma once

#include "Database/KNRowCell.h"
#include "KNSharedExport.h"

#include <QStringMatcher>

#include <functional>

/// Tests whether the displayed text of cells contains a text. NULL contains nothing. Any thread, one at a
/// time.
class KNSHARED_EXPORT KNCellMatcher
{
public:
    /// Formats a cell of a column for display; a null QString for null. Called on any thread.
    using Display = std::function<QString(const KNRowCell &cell, qsizetype column)>;

    /// `display` must outlive the matcher.
    KNCellMatcher(const QString &text, Qt::CaseSensitivity sensitivity, const Display &display);

    bool matches(const KNRowCell &cell, qsizetype column) const;

private:
    bool holdsAscii(const KNRowCell &cell) const;

    const QStringMatcher m_matcher;
    const QByteArray m_ascii; ///< in lower case if the case does not matter
    const bool m_isAscii;
    const Display &m_display;
};
