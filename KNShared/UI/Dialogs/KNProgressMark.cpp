#include "UI/Dialogs/KNProgressMark.h"

#include "Foundation/KNFormat.h"
#include "UI/KNPlainToolTip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QStyle>

KNProgressMark::KNProgressMark(const QString &subject, QWidget *parent)
    : QWidget(parent)
    , m_progress(new QProgressBar)
    , m_warning(new QLabel)
{
    m_progress->setRange(0, 0);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(subject);
    m_progress->setFixedWidth(fontMetrics().averageCharWidth() * 10);
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    m_warning->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(size));
    m_warning->setAccessibleName(KNFormat(tr("%@ failed"), subject));
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_progress);
    layout->addWidget(m_warning);
    stop();
}

void KNProgressMark::start()
{
    m_warning->hide();
    m_progress->show();
    show();
}

void KNProgressMark::stop()
{
    m_warning->hide();
    m_progress->hide();
    hide(); // takes no place, not even the spacing beside it
}

void KNProgressMark::fail(const QString &why)
{
    m_progress->hide();
    m_warning->setToolTip(KNPlainToolTip(why));
    m_warning->setAccessibleDescription(why);
    m_warning->show();
    show();
}

bool KNProgressMark::isRunning() const
{
    return !m_progress->isHidden();
}

QString KNProgressMark::problem() const
{
    return m_warning->isHidden() ? QString() : m_warning->accessibleDescription();
}
