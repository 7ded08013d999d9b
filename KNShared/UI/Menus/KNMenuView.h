#pragma once

#include "DatabaseTree/KNMenu.h"
#include "UI/KNSharedUIExport.h"

class QMenu;

/// Displays menus that are data.
namespace KNMenuView {

/// Appends the items to the menu, which performs them when chosen. Disabled items are shown at the end of
/// their group, which a separator ends, and their tool tips say why.
KNSHAREDUI_EXPORT void fill(QMenu &view, const KNMenu &menu);

} // namespace KNMenuView
