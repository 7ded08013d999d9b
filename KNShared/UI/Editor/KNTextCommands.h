#pragma once

#include "UI/KNSharedUIExport.h"

class KNSQLEditor;

/// Commands that change the selected text of an editor, each as one undo step. On the UI thread.
namespace KNTextCommands {

/// Changes the letters of all selections, or of the word at the cursor if nothing is selected.
KNSHAREDUI_EXPORT void convertToUpperCase(KNSQLEditor &editor);
KNSHAREDUI_EXPORT void convertToLowerCase(KNSQLEditor &editor);

/// Exchanges the selected lines with the line above or below. The selection moves with its text.
KNSHAREDUI_EXPORT void moveLinesUp(KNSQLEditor &editor);
KNSHAREDUI_EXPORT void moveLinesDown(KNSQLEditor &editor);

/// Inserts a copy behind each selection, or below the line of the cursor if nothing is selected.
KNSHAREDUI_EXPORT void duplicate(KNSQLEditor &editor);

} // namespace KNTextCommands
