#pragma once

#include "UI/Workspace/KNDocumentAction.h"

class KNFindBar;
class KNSQLEditor;

/// Performs an action of a document in its editor or find bar; other actions do nothing. On the UI thread.
void performEditorAction(KNDocumentAction action, KNSQLEditor &editor, KNFindBar &findBar);
