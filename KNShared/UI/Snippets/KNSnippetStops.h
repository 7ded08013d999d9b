#pragma once

#include "UI/KNSharedUIExport.h"

#include <QList>

/// The tab stops of an inserted snippet while its text is edited, in bytes. One of them is the current one:
/// text that is inserted at its ends belongs to it.
class KNSHAREDUI_EXPORT KNSnippetStops
{
public:
    struct Range
    {
        long begin;
        long end;

        friend bool operator==(const Range &, const Range &) = default;
    };
    using Ranges = QList<Range>;

    /// The places of each stop, in the order in which they are visited; `whole` is the snippet.
    KNSnippetStops(QList<Ranges> stops, const Range &whole);

    const Ranges &current() const { return m_stops[m_current]; }
    const Range &whole() const { return m_whole; }
    bool isLast() const { return m_current == m_stops.size() - 1; }
    /// Makes the next or previous stop the current one; false at the end.
    bool move(int step);

    void noteInsertion(long position, long length);
    void noteDeletion(long position, long length);

private:
    QList<Ranges> m_stops;
    Range m_whole;
    qsizetype m_current = 0;
};
