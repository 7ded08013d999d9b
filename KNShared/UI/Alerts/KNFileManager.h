#pragma once

#include "UI/KNSharedUIExport.h"

#include <QString>

#include <memory>

/// The desktop's file manager. On the UI thread.
class KNSHAREDUI_EXPORT KNFileManager
{
public:
    virtual ~KNFileManager();

    /// The desktop's file manager, unless setShared() replaced it.
    static KNFileManager &shared();
    /// Replaces the shared object; null restores the desktop's file manager.
    static void setShared(std::unique_ptr<KNFileManager> fileManager);

    /// Shows the folder that contains a file, with the file selected if the file manager can do that. Does
    /// not block.
    virtual void showFolderOf(const QString &file) = 0;
};
