#include "UI/Results/KNResultStack.h"

#include <QScrollBar>

#include <algorithm>

namespace {

/// Distributes the remaining height to the widgets that need it most: those with hidden rows.
void shareOut(int room, std::vector<int> &heights)
{
    const int most = *std::max_element(heights.begin(), heights.end());
    auto sharing = static_cast<int>(std::count(heights.begin(), heights.end(), most));
    for (int &height : heights) {
        if (height != most)
            continue;
        const int share = room / sharing--;
        height += share;
        room -= share;
    }
}

} // namespace

KNResultStack::KNResultStack(Make make, Height height, Leave leave, QWidget *parent)
    : QAbstractScrollArea(parent)
    , m_make(std::move(make))
    , m_height(std::move(height))
    , m_leave(std::move(leave))
{
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(tr("Results"));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setBackgroundRole(QPalette::Window);
}

void KNResultStack::setCount(int count)
{
    m_bottoms.resize(static_cast<std::size_t>(count));
    updateHeights();
}

void KNResultStack::updateHeights()
{
    std::vector<int> heights;
    int total = 0;
    for (int place = 0; place < static_cast<int>(m_bottoms.size()); ++place) {
        heights.push_back(m_height(place));
        total += heights.back();
    }
    const int room = viewport()->height();
    if (heights.size() == 1)
        heights[0] = room;
    else if (!heights.empty() && total < room)
        shareOut(room - total, heights);
    int bottom = 0;
    std::transform(heights.begin(), heights.end(), m_bottoms.begin(),
                   [&](int height) { return bottom += height; });
    verticalScrollBar()->setRange(0, std::max(0, bottom - room));
    verticalScrollBar()->setPageStep(room);
    verticalScrollBar()->setSingleStep(fontMetrics().height() * 2);
    arrangeWidgets();
}

void KNResultStack::scrollToPlace(int place)
{
    const auto index = static_cast<std::size_t>(place);
    const int top = place > 0 ? m_bottoms[index - 1] : 0;
    const int offset = verticalScrollBar()->value();
    const int lowest = m_bottoms[index] - viewport()->height();
    verticalScrollBar()->setValue(std::min(top, std::max(offset, lowest)));
}

void KNResultStack::resizeEvent(QResizeEvent *)
{
    updateHeights();
}

void KNResultStack::scrollContentsBy(int, int)
{
    arrangeWidgets();
}

void KNResultStack::arrangeWidgets()
{
    const int offset = verticalScrollBar()->value();
    const int room = viewport()->height();
    const auto first = std::upper_bound(m_bottoms.begin(), m_bottoms.end(), offset);
    auto place = static_cast<int>(first - m_bottoms.begin());
    const int firstShown = place;
    for (auto bottom = first; bottom != m_bottoms.end(); ++bottom, ++place) {
        const int top = bottom == m_bottoms.begin() ? 0 : *std::prev(bottom);
        if (top >= offset + room)
            break;
        QWidget *const widget = m_make(place);
        if (widget->parentWidget() != viewport())
            widget->setParent(viewport());
        widget->setGeometry(0, top - offset, viewport()->width(), *bottom - top);
        widget->show();
    }
    m_leave(firstShown, place - 1);
}
