#include "Desktop/Query/EditorCommands.h"

#include "UI/Editor/KNEditorFormatting.h"
#include "UI/Editor/KNEditorSurrounding.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Rename/KNEditorRename.h"

EditorCommands::EditorCommands(KNSQLEditor *editor, const Settings &settings)
    : QObject(editor)
    , m_formatting(new KNEditorFormatting(editor, settings))
    , m_surrounding(new KNEditorSurrounding(editor, settings))
    , m_rename(new KNEditorRename(editor, settings))
{
    connect(m_rename, &KNEditorRename::refused, this, &EditorCommands::setNote);
    connect(m_surrounding, &KNEditorSurrounding::refused, this, &EditorCommands::setNote);
    connect(editor, &KNSQLEditor::cursorPositionChanged, this, [this] { setNote(QString()); });
}

bool EditorCommands::perform(KNDocumentAction action)
{
    switch (action) {
    case KNDocumentAction::Format:
        m_formatting->format();
        return true;
    case KNDocumentAction::Rename:
        m_rename->begin();
        return true;
    case KNDocumentAction::Surround:
        m_surrounding->choose();
        return true;
    default:
        return false;
    }
}

void EditorCommands::setNote(const QString &note)
{
    if (note == m_note)
        return;
    m_note = note;
    Q_EMIT noteChanged();
}
