#include "UI/Completion/KNCompletionPopup.h"

#include "UI/Completion/KNCompletionDelegate.h"
#include "UI/Completion/KNCompletionModel.h"

#include <QScreen>
#include <QScrollBar>

namespace {

constexpr int VisibleRows = 10;
constexpr int MinimumWidth = 240;
constexpr int MaximumWidth = 560;
constexpr int MeasuredRows = 50; ///< rows whose width counts

} // namespace

KNCompletionPopup::KNCompletionPopup(QWidget *parent)
    : QListView(parent)
    , m_model(new KNCompletionModel(this))
{
    setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::NoFocus);
    setAccessibleName(tr("Completions"));
    setModel(m_model);
    setItemDelegate(new KNCompletionDelegate(this));
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setEditTriggers(NoEditTriggers);
    setFrameStyle(QFrame::Box | QFrame::Plain);
}

void KNCompletionPopup::showItems(QList<KNCompletionItem> items, const QRect &globalLine, bool choosesFirst)
{
    m_model->setItems(std::move(items));
    setCurrentIndex(choosesFirst ? m_model->index(0) : QModelIndex());
    scrollToTop();
    showFrame();
    place(globalLine);
    show();
}

/// The list has the colour of the text below it: its frame must be seen in light and dark.
void KNCompletionPopup::showFrame()
{
    QPalette colours = parentWidget()->palette();
    QColor line = colours.color(QPalette::Text);
    line.setAlphaF(0.4f);
    colours.setColor(QPalette::WindowText, line);
    setPalette(colours);
}

const QList<KNCompletionItem> &KNCompletionPopup::items() const
{
    return m_model->items();
}

void KNCompletionPopup::moveChoice(int rows)
{
    const int count = m_model->rowCount();
    if (count == 0)
        return;
    const int from = chosenRow() < 0 && rows < 0 ? 0 : chosenRow();
    const int step =
        std::abs(rows) == 1 ? (from + rows + count) % count : std::clamp(from + rows, 0, count - 1);
    setCurrentIndex(m_model->index(step));
}

void KNCompletionPopup::place(const QRect &globalLine)
{
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    int width = MinimumWidth;
    const int count = m_model->rowCount();
    for (int row = 0; row < std::min(count, MeasuredRows); ++row)
        width = std::max(width, itemDelegate()->sizeHint(option, m_model->index(row)).width());
    const int rowHeight = itemDelegate()->sizeHint(option, m_model->index(0)).height();
    const int scroll = count > VisibleRows ? verticalScrollBar()->sizeHint().width() : 0;
    const QSize size(std::min(width + scroll, MaximumWidth) + 2 * frameWidth(),
                     std::min(count, VisibleRows) * rowHeight + 2 * frameWidth());
    const QRect available = screen()->availableGeometry();
    QPoint position = globalLine.bottomLeft() + QPoint(0, 1);
    if (position.y() + size.height() > available.bottom() &&
        globalLine.top() - size.height() > available.top())
        position.setY(globalLine.top() - size.height());
    position.setX(std::clamp(position.x(), available.left(),
                             std::max(available.left(), available.right() - size.width())));
    setGeometry(QRect(position, size));
}
