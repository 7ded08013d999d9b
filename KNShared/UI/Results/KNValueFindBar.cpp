#include "UI/Results/KNValueFindBar.h"

#include "UI/Editor/KNSQLColours.h"
#include "UI/Editor/KNScintilla.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

KNValueFindBar::KNValueFindBar(QsciScintilla *editor, QWidget *parent)
    : QWidget(parent)
    , m_editor(editor)
    , m_field(new QLineEdit(this))
    , m_message(new QLabel(this))
{
    m_field->setPlaceholderText(tr("Find in the value"));
    m_field->setAccessibleName(tr("Find in the value"));
    m_field->setClearButtonEnabled(true);
    m_message->setTextFormat(Qt::PlainText);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_field, 1);
    layout->addWidget(m_message);
    const auto addButton = [&](const QString &text, const QString &hint, void (KNValueFindBar::*slot)()) {
        auto *const button = new QToolButton(this);
        button->setText(text);
        button->setToolTip(hint);
        button->setAccessibleName(hint);
        button->setFocusPolicy(Qt::TabFocus);
        layout->addWidget(button);
        connect(button, &QToolButton::clicked, this, slot);
    };
    addButton(tr("Previous"), tr("Previous match (Shift+F3)"), &KNValueFindBar::findPrevious);
    addButton(tr("Next"), tr("Next match (F3)"), &KNValueFindBar::findNext);
    setFocusProxy(m_field);
    hide();
    connect(m_field, &QLineEdit::textChanged, this, [this] { find(true, true); });
}

QString KNValueFindBar::message() const
{
    return m_message->text();
}

void KNValueFindBar::open()
{
    show();
    m_field->setFocus();
    m_field->selectAll();
}

void KNValueFindBar::close()
{
    hide();
    m_editor->setFocus();
}

void KNValueFindBar::findNext()
{
    find(true, false);
}

void KNValueFindBar::findPrevious()
{
    find(false, true);
}

void KNValueFindBar::find(bool forward, bool fromSelectionStart)
{
    m_message->clear();
    if (m_field->text().isEmpty())
        return;
    int startLine = 0, start = 0, endLine = 0, end = 0;
    m_editor->getSelection(&startLine, &start, &endLine, &end);
    if (startLine < 0) { // nothing is selected
        m_editor->getCursorPosition(&startLine, &start);
        endLine = startLine;
        end = start;
    }
    const bool isFound =
        m_editor->findFirst(m_field->text(), false, false, false, true, forward,
                            fromSelectionStart ? startLine : endLine, fromSelectionStart ? start : end);
    if (isFound)
        return;
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, KNSQLColours::forPalette(palette()).error);
    m_message->setPalette(colours);
    m_message->setText(tr("No matches"));
}

void KNValueFindBar::keyPressEvent(QKeyEvent *event)
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
