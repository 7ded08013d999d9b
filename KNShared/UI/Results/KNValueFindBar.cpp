#include "UI/Results/KNValueFindBar.h"

#include "UI/Editor/KNScintilla.h"

#include <QBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

KNValueFindBar::KNValueFindBar(QsciScintilla *editor, QWidget *parent)
    : KNSearchBar(editor, tr("Find in the value"), parent)
    , m_editor(editor)
{
    field()->setPlaceholderText(tr("Find in the value"));
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(field(), 1);
    for (QWidget *const widget :
         std::initializer_list<QWidget *>{messageLabel(), previousButton(), nextButton(), closeButton()})
        layout->addWidget(widget);
    connect(field(), &QLineEdit::textChanged, this, [this] { find(true, true); });
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
    say({});
    if (field()->text().isEmpty())
        return;
    int startLine = 0, start = 0, endLine = 0, end = 0;
    m_editor->getSelection(&startLine, &start, &endLine, &end);
    if (startLine < 0) { // nothing is selected
        m_editor->getCursorPosition(&startLine, &start);
        endLine = startLine;
        end = start;
    }
    const bool isFound =
        m_editor->findFirst(field()->text(), false, false, false, true, forward,
                            fromSelectionStart ? startLine : endLine, fromSelectionStart ? start : end);
    if (!isFound)
        sayCount(-1, 0, false);
}
