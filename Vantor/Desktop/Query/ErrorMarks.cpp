#include "Desktop/Query/ErrorMarks.h"

#include "Database/KNMessageText.h"
#include "UI/Editor/KNSQLEditor.h"

ErrorMarks::ErrorMarks(KNSQLEditor *editor, const MessagesView *messages, QObject *parent)
    : QObject(parent)
    , m_editor(editor)
    , m_messages(messages)
{
    connect(editor, &KNSQLEditor::textChanged, this, [this] { m_isEdited = true; });
    connect(messages, &MessagesView::targetActivated, this, &ErrorMarks::goTo);
}

void ErrorMarks::beginRun()
{
    m_isEdited = false;
    continueRun();
}

void ErrorMarks::continueRun()
{
    m_editor->clearErrorMarks();
}

void ErrorMarks::show(const KNError &error)
{
    if (m_isEdited)
        return;
    if (m_messages->errorTargets().isEmpty())
        mark({.range = KNMessageText::markedRange(error)});
    for (const MessagesView::Target &target : m_messages->errorTargets())
        mark(target);
}

void ErrorMarks::showErrorsOf(const KNResultSetHolder &results)
{
    m_editor->clearErrorMarks();
    const auto resultSets = results.resultSets();
    for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
        const auto messages = resultSet->serverMessages();
        for (const DatabaseMessage &message : messages) {
            if (message.isFailure())
                mark(MessagesView::targetOf(message));
        }
    }
}

void ErrorMarks::mark(const MessagesView::Target &target)
{
    if (target.range.isFound())
        m_editor->markError(target.range);
    else if (target.line > 0)
        m_editor->markErrorLine(target.line);
}

void ErrorMarks::goTo(const MessagesView::Target &target)
{
    if (target.line > 0)
        m_editor->goToLine(target.line);
    if (target.range.isFound() && !m_isEdited)
        m_editor->selectRange(target.range);
    m_editor->setFocus();
}
