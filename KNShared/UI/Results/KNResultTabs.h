#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QComboBox;
class QTabBar;

/// Selects one of several results: with tabs, or with a list if there are too many for tabs. On the UI
/// thread.
class KNSHAREDUI_EXPORT KNResultTabs : public QWidget
{
    Q_OBJECT

public:
    static constexpr int MostTabs = 40;

    explicit KNResultTabs(QWidget *parent = nullptr);

    /// Sets the number of results; 0 resets. The first one becomes the current one.
    void setCount(int count);
    /// The current result; -1 while there are none.
    int current() const { return m_current; }
    void setCurrent(int result);

Q_SIGNALS:
    void currentChanged(int result);

private:
    QTabBar *m_tabs;
    QComboBox *m_list;
    int m_count = 0;
    int m_current = -1;
};
