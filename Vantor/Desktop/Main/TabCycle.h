#pragma once

#include <QObject>
#include <QPointer>

class QTabWidget;

/// Steps through tabs in the order of their last use while Ctrl is held: the first step leads to the tab that
/// was in front before. Releasing Ctrl ends the cycle. On the UI thread.
class TabCycle : public QObject
{
    Q_OBJECT

public:
    explicit TabCycle(QTabWidget *tabs);

    /// Shows the tab used before the one in front (1), or the one used after it (-1).
    void step(int offset);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void noteUse();
    void end();
    void removeClosed();

    QTabWidget *const m_tabs;
    QList<QPointer<QWidget>> m_used; ///< the most recently used one first
    qsizetype m_position = 0;        ///< in m_used during a cycle
    bool m_isActive = false;
};
