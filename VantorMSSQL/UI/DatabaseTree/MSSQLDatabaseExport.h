#pragma once

#include "UI/Workspace/KNWorkspace.h"

#include <functional>

class KNProgressSheet;

/// Runs an export in the background under a progress sheet with a Cancel button. On the UI thread.
class MSSQLDatabaseExport
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLDatabaseExport)

public:
    /// For the work in the background. Any thread.
    struct Control
    {
        std::function<bool()> isCancelled;
        /// Shows a text and the fraction that is done, from 0 to 1.
        std::function<void(const QString &text, double fraction)> progress;
    };
    using Work = std::function<KNError(const Control &control)>;

    /// Runs `work` on the global queue and then shows the error, or the file `path` in the file manager.
    /// Neither is shown after a cancellation.
    static void run(KNWorkspace &workspace, const QString &title, const QString &path, Work work);
};
