#include "UI/Editor/KNSearchBar.h"

#include "Database/KNMessageText.h"
#include "Foundation/KNFormat.h"
#include "UI/Editor/KNSQLColours.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

KNSearchBar::KNSearchBar(QWidget *searched, const QString &fieldName, QWidget *parent)
    : QWidget(parent)
    , m_searched(searched)
    , m_field(new QLineEdit(this))
    , m_message(new QLabel(this))
    , m_previous(newButton(tr("Previous"), tr("Previous match (Shift+F3)")))
    , m_next(newButton(tr("Next"), tr("Next match (F3)")))
    , m_close(newButton(tr("Close"), tr("Close the find bar (Esc)")))
{
    m_field->setAccessibleName(fieldName);
    m_field->setClearButtonEnabled(true);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setAccessibleName(tr("Matches"));
    setFocusProxy(m_field);
    connect(m_previous, &QToolButton::clicked, this, &KNSearchBar::findPrevious);
    connect(m_next, &QToolButton::clicked, this, &KNSearchBar::findNext);
    connect(m_close, &QToolButton::clicked, this, &KNSearchBar::close);
    hide();
}

QToolButton *KNSearchBar::newButton(const QString &text, const QString &hint)
{
    auto *const button = new QToolButton(this);
    button->setText(text);
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

QString KNSearchBar::message() const
{
    return m_message->text();
}

void KNSearchBar::open()
{
    show();
    m_field->setFocus();
    m_field->selectAll();
}

void KNSearchBar::close()
{
    hide();
    if (m_searched)
        m_searched->setFocus();
}

void KNSearchBar::say(const QString &text, bool isProblem)
{
    QPalette colours = palette();
    if (isProblem)
        colours.setColor(QPalette::WindowText, KNSQLColours::forPalette(palette()).error);
    m_message->setPalette(colours);
    m_message->setText(text);
}

void KNSearchBar::sayCount(qsizetype current, qsizetype total, bool isLimited)
{
    if (total == 0)
        return say(tr("No matches"), true);
    const QString count = KNMessageText::countText(total) + (isLimited ? QStringLiteral("+") : QString());
    if (current >= 0)
        say(KNFormat(tr("%@ of %@"), KNMessageText::countText(current + 1), count));
    else
        say(total == 1 ? tr("1 match") : KNFormat(tr("%@ matches"), count));
}

bool KNSearchBar::event(QEvent *event)
{
    // The bar handles Escape before any shortcut does.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        event->accept();
    return QWidget::event(event);
}

void KNSearchBar::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        close();
    else if (isReturn && event->modifiers() == Qt::ShiftModifier)
        findPrevious();
    else if (isReturn)
        findNext();
    else
        QWidget::keyPressEvent(event);
}
