#include "UI/Snippets/KNSnippetStops.h"

#include <algorithm>

namespace {

void insert(KNSnippetStops::Range *range, long position, long length, bool takesEnds)
{
    const bool isInside = takesEnds ? position >= range->begin && position <= range->end
                                    : position > range->begin && position < range->end;
    if (isInside || position <= range->begin)
        range->end += length;
    if (!isInside && position <= range->begin)
        range->begin += length;
}

void remove(KNSnippetStops::Range *range, long position, long length)
{
    for (long *const end : {&range->begin, &range->end})
        *end -= std::clamp(*end - position, 0L, length);
}

} // namespace

KNSnippetStops::KNSnippetStops(QList<Ranges> stops, const Range &whole)
    : m_stops(std::move(stops))
    , m_whole(whole)
{
}

bool KNSnippetStops::move(int step)
{
    const qsizetype next = m_current + step;
    if (next < 0 || next >= m_stops.size())
        return false;
    m_current = next;
    return true;
}

void KNSnippetStops::noteInsertion(long position, long length)
{
    insert(&m_whole, position, length, true);
    for (qsizetype stop = 0; stop < m_stops.size(); ++stop) {
        for (Range &range : m_stops[stop])
            insert(&range, position, length, stop == m_current);
    }
}

void KNSnippetStops::noteDeletion(long position, long length)
{
    remove(&m_whole, position, length);
    for (Ranges &ranges : m_stops) {
        for (Range &range : ranges)
            remove(&range, position, length);
    }
}
