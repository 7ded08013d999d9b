#include "Desktop/Main/TabCycle.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTabWidget>

TabCycle::TabCycle(QTabWidget *tabs)
    : QObject(tabs)
    , m_tabs(tabs)
{
    connect(tabs, &QTabWidget::currentChanged, this, &TabCycle::noteUse);
}

void TabCycle::noteUse()
{
    if (m_isActive || !m_tabs->currentWidget())
        return;
    m_used.removeAll(m_tabs->currentWidget());
    m_used.prepend(m_tabs->currentWidget());
    removeClosed();
}

/// Tabs that were never in front follow in the order of their tabs.
void TabCycle::removeClosed()
{
    m_used.removeIf([this](const QPointer<QWidget> &tab) { return !tab || m_tabs->indexOf(tab) < 0; });
    for (int i = 0; i < m_tabs->count(); ++i) {
        if (!m_used.contains(m_tabs->widget(i)))
            m_used.append(m_tabs->widget(i));
    }
}

void TabCycle::step(int offset)
{
    removeClosed();
    if (m_used.size() < 2)
        return;
    if (!m_isActive) {
        m_isActive = true;
        m_position = 0;
        qApp->installEventFilter(this);
    }
    m_position = (m_position + offset + m_used.size()) % m_used.size();
    m_tabs->setCurrentWidget(m_used[m_position]);
}

bool TabCycle::eventFilter(QObject *watched, QEvent *event)
{
    const bool isRelease =
        event->type() == QEvent::KeyRelease && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Control;
    if (isRelease || event->type() == QEvent::ApplicationDeactivate ||
        event->type() == QEvent::MouseButtonPress)
        end();
    return QObject::eventFilter(watched, event);
}

void TabCycle::end()
{
    qApp->removeEventFilter(this);
    m_isActive = false;
    noteUse();
}
