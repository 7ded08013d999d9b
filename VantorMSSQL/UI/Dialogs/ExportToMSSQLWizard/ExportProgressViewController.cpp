#include "UI/Dialogs/ExportToMSSQLWizard/ExportProgressViewController.h"

#include <QBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

ExportProgressViewController::ExportProgressViewController(QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel)
    , m_bar(new QProgressBar)
    , m_cancel(new QPushButton(tr("Cancel")))
{
    m_label->setTextFormat(Qt::PlainText);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(tr("Progress"));
    connect(m_cancel, &QPushButton::clicked, this, &ExportProgressViewController::cancel);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addStretch();
    layout->addWidget(m_label);
    layout->addWidget(m_bar);
    layout->addWidget(m_cancel, 0, Qt::AlignRight);
    layout->addStretch();
}

void ExportProgressViewController::setLabelString(const QString &label)
{
    m_label->setText(label);
}

QString ExportProgressViewController::labelString() const
{
    return m_label->text();
}

void ExportProgressViewController::setPercentage(int percentage)
{
    m_bar->setValue(percentage);
}

void ExportProgressViewController::cancel()
{
    *m_cancelled = true;
    m_cancel->setText(tr("Cancelling"));
    m_cancel->setEnabled(false);
}
