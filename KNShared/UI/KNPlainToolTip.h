#pragma once

#include "UI/KNSharedUIExport.h"

#include <QString>

/// Returns a tool tip that shows `text` literally: Qt would display text that looks like HTML as rich text
/// and load its resources. Only the first 4,000 characters are shown; an empty text gives an empty tool tip.
/// Any thread.
KNSHAREDUI_EXPORT QString KNPlainToolTip(const QString &text);
