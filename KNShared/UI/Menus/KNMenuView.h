#pragma once

#include "DatabaseTree/KNMenu.h"
#include "UI/KNSharedUIExport.h"

class QMenu;

/// Displays menus that are data.
namespace KNMenuView {

/// Appends the items to the menu, which performs them when chosen. Items with an unknown action are disabled,
/// and their tool tips say that it is not available yet.
KNSHAREDUI_EXPORT void fill(QMenu &view, const KNMenu &menu);

} // namespace KNMenuView
