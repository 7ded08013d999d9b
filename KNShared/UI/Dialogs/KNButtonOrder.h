#pragma once

#include "UI/KNSharedUIExport.h"

class QDialog;

/// Lets the Tab key reach every button of a dialog's button boxes, and leave them: Qt loses buttons when
/// their box comes into the window after it was filled. On the UI thread.
KNSHAREDUI_EXPORT void KNOrderButtons(const QDialog &dialog);
