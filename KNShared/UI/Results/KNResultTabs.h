#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QComboBox;
class QTabBar;

/// Chooses one of several results: tabs, and a list when there are so many that nobody could find one among
/// tabs. On the UI thread.
class KNSHAREDUI_EXPORT KNResultTabs : public QWidget
{
    Q_OBJECT

public:
    static constexpr int MostTabs = 40;

    explicit KNResultTabs(QWidget *parent = nullptr);

    /// How many results there are; 0 begins anew. The first one becomes the current one.
    void setCount(int count);
    /// -1 while there are none.
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
