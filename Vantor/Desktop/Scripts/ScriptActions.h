#pragma once

#include "UI/Workspace/KNDocumentTab.h"
#include "UI/Workspace/KNWorkspace.h"

/// Generates scripts from the Tools menu. On the UI thread.
class ScriptActions
{
    Q_DECLARE_TR_FUNCTIONS(ScriptActions)

public:
    /// Opens the window for all objects of the database of the tree's selection, otherwise for those of the
    /// document's; null for no document. Says so if there is no database.
    static void generate(KNWorkspace &workspace, const KNDocumentTab *document);
};
