#pragma once

#include "UI/KNSharedUIExport.h"

#include <QString>

/// What to set as a tooltip so that `text` is shown as it is: Qt takes a text that looks like HTML for rich
/// text, and would load what it names. Only the first 4,000 characters are shown; an empty text gives none.
/// Any thread.
KNSHAREDUI_EXPORT QString KNPlainToolTip(const QString &text);
