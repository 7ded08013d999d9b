#pragma once

#include "Database/VantorDBC.h"
#include "Export/KNScriptExport.h"
#include "UI/KNSharedUIExport.h"

#include <QCoreApplication>

class QWidget;

/// Writes scripts in the background under a progress sheet with a Cancel button. On the UI thread.
class KNSHAREDUI_EXPORT KNScriptRun
{
    Q_DECLARE_TR_FUNCTIONS(KNScriptRun)

public:
    using Finished = std::function<void(const KNError &error, bool wasCancelled)>;

    /// `parent` is the window of the sheet; `finished` is called on the UI thread, also if that is gone.
    static void start(QWidget *parent, const std::shared_ptr<const VantorDBC> &settings,
                      const KNScriptExport &scripts, Finished finished);
    /// The text for a state of an export.
    static QString labelFor(const KNScriptProgress &progress);
};
