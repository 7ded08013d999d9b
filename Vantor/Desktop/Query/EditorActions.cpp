#include "Desktop/Query/EditorActions.h"

#include "UI/Editor/KNFindBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Editor/KNTextCommands.h"

void performEditorAction(KNDocumentAction action, KNSQLEditor &editor, KNFindBar &findBar)
{
    switch (action) {
    case KNDocumentAction::Find:
        return findBar.showFind();
    case KNDocumentAction::Replace:
        return findBar.showReplace();
    case KNDocumentAction::FindNext:
        return findBar.findNext();
    case KNDocumentAction::FindPrevious:
        return findBar.findPrevious();
    case KNDocumentAction::ToggleComment:
        return editor.toggleComment();
    case KNDocumentAction::CommentLines:
        return editor.commentLines();
    case KNDocumentAction::UncommentLines:
        return editor.uncommentLines();
    case KNDocumentAction::UpperCase:
        return KNTextCommands::convertToUpperCase(editor);
    case KNDocumentAction::LowerCase:
        return KNTextCommands::convertToLowerCase(editor);
    case KNDocumentAction::MoveLinesUp:
        return KNTextCommands::moveLinesUp(editor);
    case KNDocumentAction::MoveLinesDown:
        return KNTextCommands::moveLinesDown(editor);
    case KNDocumentAction::Duplicate:
        return KNTextCommands::duplicate(editor);
    case KNDocumentAction::GoToLine:
        return editor.askForLine();
    case KNDocumentAction::ZoomIn:
        return editor.zoomIn();
    case KNDocumentAction::ZoomOut:
        return editor.zoomOut();
    case KNDocumentAction::ResetZoom:
        return editor.resetZoom();
    default:
        return;
    }
}
