#include "UI/Workspace/KNProgressSheetDialog.h"

#include <QBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>

KNProgressSheetDialog::KNProgressSheetDialog(QWidget *parent)
    : QDialog(parent)
    , m_label(new QLabel)
    , m_bar(new QProgressBar)
    , m_cancel(new QPushButton(tr("Cancel")))
{
    constexpr int Width = 420;
    setWindowModality(Qt::WindowModal);
    setWindowTitle(tr("Progress"));
    m_label->setTextFormat(Qt::PlainText);
    m_label->setWordWrap(true);
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(tr("Progress"));
    m_cancel->hide();
    m_cancel->setAutoDefault(false);
    setPercentage(std::nullopt);
    auto *const row = new QHBoxLayout;
    row->addWidget(m_bar, 1);
    row->addWidget(m_cancel);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addLayout(row);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    m_label->setFixedWidth(Width);
    connect(m_cancel, &QPushButton::clicked, this, &KNProgressSheetDialog::reject);
}

void KNProgressSheetDialog::setLabel(const QString &label)
{
    m_label->setText(label);
    setAccessibleName(label);
}

void KNProgressSheetDialog::setPercentage(std::optional<double> percentage)
{
    m_bar->setRange(0, percentage ? 100 : 0);
    if (percentage)
        m_bar->setValue(static_cast<int>(std::clamp(*percentage, 0.0, 100.0)));
}

void KNProgressSheetDialog::setCancelBlock(std::function<void()> cancel)
{
    m_cancelBlock = std::move(cancel);
    m_cancel->setVisible(m_cancelBlock != nullptr);
    m_cancel->setEnabled(true);
}

void KNProgressSheetDialog::reject()
{
    const auto cancel = std::exchange(m_cancelBlock, nullptr);
    if (!cancel)
        return;
    m_cancel->setEnabled(false);
    cancel();
}
