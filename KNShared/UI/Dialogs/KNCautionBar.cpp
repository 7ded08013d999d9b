#include "UI/Dialogs/KNCautionBar.h"

#include <QAccessible>
#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

namespace {

constexpr int DarkBelow = 128; // lightness

} // namespace

KNCautionBar::KNCautionBar(QWidget *parent)
    : QFrame(parent)
    , m_icon(new QLabel)
    , m_text(new QLabel)
    , m_button(new QPushButton)
{
    constexpr int IconSize = 20;
    constexpr int Margin = 8;
    setAutoFillBackground(true);
    m_icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(IconSize));
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_button->setAutoDefault(false);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(Margin);
    layout->addWidget(m_icon, 0, Qt::AlignTop);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_button, 0, Qt::AlignVCenter);
    setButtonTitle({});
    setText({});
    applyColours();
}

void KNCautionBar::setText(const QString &text)
{
    m_text->setText(text);
    setAccessibleName(text);
    setVisible(!text.isEmpty());
    if (isVisible()) { // screen readers read it, although the focus stays where it is
        QAccessibleEvent event(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&event);
    }
}

QString KNCautionBar::text() const
{
    return m_text->text();
}

void KNCautionBar::setButtonTitle(const QString &title)
{
    m_button->setText(title);
    m_button->setVisible(!title.isEmpty());
}

void KNCautionBar::changeEvent(QEvent *event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::ThemeChange)
        applyColours();
}

/// The text has a contrast of more than 7 : 1 to the background.
void KNCautionBar::applyColours()
{
    const bool isDark = parentWidget() ? parentWidget()->palette().window().color().lightness() < DarkBelow
                                       : palette().window().color().lightness() < DarkBelow;
    QPalette colours = m_text->palette();
    const QColor text(isDark ? 0xFFE9A8 : 0x4A3A00);
    colours.setColor(QPalette::Window, QColor(isDark ? 0x453A16 : 0xFFF3CD));
    colours.setColor(QPalette::WindowText, text);
    colours.setColor(QPalette::Text, text);
    setPalette(colours);
    m_text->setPalette(colours);
    // The button keeps the colours of other buttons.
    m_button->setPalette(QPalette());
}
