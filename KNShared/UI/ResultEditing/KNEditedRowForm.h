#pragma once

#include "UI/KNSharedUIExport.h"

class KNResultEditing;
class QWidget;

/// Reads a displayed row of an editable result by its key, and opens the form of its table with it. The form
/// writes on a connection of its own. On the UI thread; a sheet of the window of `parent`.
KNSHAREDUI_EXPORT void KNOpenEditedRow(QWidget *parent, KNResultEditing &editing, int row);
