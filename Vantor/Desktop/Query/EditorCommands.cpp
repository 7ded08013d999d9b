#include "Desktop/Query/EditorCommands.h"

#include "UI/Completion/KNEditorLanguage.h"
#include "UI/Editor/KNEditorFormatting.h"
#include "UI/Editor/KNEditorSurrounding.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Names/KNEditorNames.h"
#include "UI/Rename/KNEditorRename.h"
#include "UI/Workspace/KNWorkspace.h"

EditorCommands::EditorCommands(const std::shared_ptr<KNEditorLanguage> &language)
    : QObject(language->editor())
    , m_formatting(new KNEditorFormatting(language->editor(), [language] { return language->settings(); }))
    , m_surrounding(new KNEditorSurrounding(language))
    , m_rename(new KNEditorRename(language))
    , m_names(new KNEditorNames(language))
{
    const auto explain = [editor = language->editor()](const QString &reason) {
        if (KNWorkspace *const workspace = KNWorkspace::of(*editor))
            workspace->showNotice(reason);
    };
    connect(m_rename, &KNEditorRename::refused, this, explain);
    connect(m_surrounding, &KNEditorSurrounding::refused, this, explain);
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
        return m_names->perform(action);
    }
}
