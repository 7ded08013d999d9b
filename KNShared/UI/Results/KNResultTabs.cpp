#include "UI/Results/KNResultTabs.h"

#include "Foundation/KNFormat.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QSignalBlocker>
#include <QTabBar>

KNResultTabs::KNResultTabs(QWidget *parent)
    : QWidget(parent)
    , m_tabs(new QTabBar(this))
    , m_list(new QComboBox(this))
{
    m_tabs->setAccessibleName(tr("Results"));
    m_tabs->setExpanding(false);
    m_tabs->setDrawBase(false);
    m_tabs->setUsesScrollButtons(true);
    m_list->setAccessibleName(tr("Results"));
    m_list->hide();
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_tabs, 1);
    layout->addWidget(m_list);
    layout->addStretch();
    connect(m_tabs, &QTabBar::currentChanged, this, &KNResultTabs::setCurrent);
    connect(m_list, &QComboBox::currentIndexChanged, this, &KNResultTabs::setCurrent);
}

void KNResultTabs::setCount(int count)
{
    const QSignalBlocker tabsBlocker(m_tabs);
    const QSignalBlocker listBlocker(m_list);
    if (count < m_count) {
        while (m_tabs->count() > 0)
            m_tabs->removeTab(m_tabs->count() - 1);
        m_list->clear();
        m_count = 0;
        m_current = -1;
    }
    for (; m_count < count; ++m_count) {
        const QString title = KNFormat(tr("Result %d"), m_count + 1);
        if (m_count < MostTabs)
            m_tabs->addTab(title);
        m_list->addItem(title);
    }
    m_tabs->setVisible(count <= MostTabs);
    m_list->setVisible(count > MostTabs);
    if (m_current < 0 && count > 0)
        m_current = 0;
    m_list->setCurrentIndex(m_current);
}

void KNResultTabs::setCurrent(int result)
{
    if (result < 0 || result == m_current)
        return;
    m_current = result;
    {
        const QSignalBlocker tabsBlocker(m_tabs);
        const QSignalBlocker listBlocker(m_list);
        m_tabs->setCurrentIndex(result);
        m_list->setCurrentIndex(result);
    }
    Q_EMIT currentChanged(result);
}
