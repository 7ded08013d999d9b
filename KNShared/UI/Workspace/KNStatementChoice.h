#pragma once

#include "QueryLoader/KNStatementPair.h"
#include "UI/KNSharedUIExport.h"

#include <functional>

class QWidget;

/// For an action without a preview: calls `use` with the preferred statement of a pair. Asks the user first
/// if that is the exact one and it differs from the corrected one. `use` is not called if the user cancels or
/// the parent is destroyed before. If the statements remove something, the Return key cancels the question.
/// On the UI thread.
KNSHAREDUI_EXPORT void KNChooseStatement(QWidget *parent, const KNStatementPair &pair, bool prefersCorrected,
                                         const std::function<void(const QString &statement)> &use,
                                         bool removes = false);
