#pragma once

#include "UI/KNSharedUIExport.h"

class KNResultEditing;
class QWidget;

/// Shows the statements of the pending changes, unless the preferences say otherwise, and runs them in the
/// session of the result: all of them or none. On success the result shows what the server has stored; in any
/// other case the changes stay pending. On the UI thread; a sheet of the window of `parent`.
KNSHAREDUI_EXPORT void KNApplyRowChanges(QWidget *parent, KNResultEditing &editing);
