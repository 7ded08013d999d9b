#include "UI/Results/KNNoticeBar.h"

#include <QBoxLayout>
#include <QLabel>
#include <QToolButton>

KNNoticeBar::KNNoticeBar(QWidget *parent)
    : QFrame(parent)
    , m_text(new QLabel(this))
    , m_button(new QToolButton(this))
{
    constexpr int Margin = 4;
    setFrameShape(QFrame::NoFrame);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_button->setFocusPolicy(Qt::TabFocus);
    auto *const closing = new QToolButton(this);
    closing->setText(tr("Close"));
    closing->setAccessibleName(tr("Close this note"));
    closing->setAutoRaise(true);
    closing->setFocusPolicy(Qt::TabFocus);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(Margin * 2, Margin, Margin, Margin);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_button);
    layout->addWidget(closing);
    hide();
    connect(closing, &QToolButton::clicked, this, &QWidget::hide);
    connect(m_button, &QToolButton::clicked, this, [this] { m_pressed(); });
}

void KNNoticeBar::showNotice(const QString &text)
{
    showNotice(text, {}, [] {});
}

void KNNoticeBar::showNotice(const QString &text, const QString &buttonTitle, std::function<void()> pressed)
{
    m_text->setText(text);
    m_button->setText(buttonTitle);
    m_button->setVisible(!buttonTitle.isEmpty());
    m_pressed = std::move(pressed);
    show();
}

QString KNNoticeBar::text() const
{
    return isHidden() ? QString() : m_text->text();
}
