#include "Desktop/Main/TabDrag.h"

#include "Desktop/Main/DocumentTabs.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QTabBar>
#include <QUuid>

namespace {

const QString TabMimeType = QStringLiteral("application/x-vantor-tab");

/// Other programs see the token only.
struct DraggedTab
{
    QByteArray token;
    QPointer<KNDocumentTab> document;
};

DraggedTab &draggedTab()
{
    static DraggedTab dragged;
    return dragged;
}

} // namespace

TabDrag::TabDrag(DocumentTabs *tabs)
    : QObject(tabs)
    , m_tabs(tabs)
{
    tabs->tabBar()->installEventFilter(this);
}

std::unique_ptr<QMimeData> TabDrag::dataOf(KNDocumentTab *document)
{
    draggedTab() = {QUuid::createUuid().toByteArray(), document};
    auto data = std::make_unique<QMimeData>();
    data->setData(TabMimeType, draggedTab().token);
    return data;
}

KNDocumentTab *TabDrag::documentIn(const QMimeData &data)
{
    const QByteArray token = data.data(TabMimeType);
    return !token.isEmpty() && token == draggedTab().token ? draggedTab().document.data() : nullptr;
}

/// Within the bar a tab changes its place; a drag begins where it is pulled out.
bool TabDrag::hasLeftBar(const QPoint &position) const
{
    const int distance = QApplication::startDragDistance();
    return !m_tabs->tabBar()->rect().adjusted(0, -distance, 0, distance).contains(position);
}

bool TabDrag::eventFilter(QObject *watched, QEvent *event)
{
    const auto *const mouse = static_cast<const QMouseEvent *>(event);
    if (event->type() == QEvent::MouseButtonPress) {
        m_pressed =
            mouse->button() == Qt::LeftButton ? m_tabs->tabBar()->tabAt(mouse->position().toPoint()) : -1;
    } else if (event->type() == QEvent::MouseButtonRelease) {
        m_pressed = -1;
    } else if (event->type() == QEvent::MouseMove && m_pressed >= 0 &&
               hasLeftBar(mouse->position().toPoint())) {
        // A tab that was moved before it left the bar is the current one.
        KNDocumentTab *const document = m_tabs->currentDocument();
        m_pressed = -1;
        if (document && m_tabs->canMove(*document)) {
            drag(document);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

void TabDrag::drag(KNDocumentTab *document)
{
    QTabBar *const bar = m_tabs->tabBar();
    const QRect place = bar->tabRect(m_tabs->indexOf(document));
    const QPixmap picture = bar->grab(place);
    // Ends the bar's own movement of the tab.
    QMouseEvent release(QEvent::MouseButtonRelease, place.center(), bar->mapToGlobal(place.center()),
                        Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(bar, &release);
    auto *const dragged = new QDrag(bar); // deletes itself
    dragged->setMimeData(dataOf(document).release());
    dragged->setPixmap(picture);
    dragged->exec(Qt::MoveAction);
}
