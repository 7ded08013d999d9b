#pragma once

#include "DatabaseTree/KNMenu.h"
#include "UI/KNSharedUIExport.h"

class QMenu;

/// Shows menus that are data.
namespace KNMenuView {

/// Appends the items to the menu, which carries them out when they are chosen. Those whose action nobody
/// knows are disabled, and their tool tips say that it is not there yet.
KNSHAREDUI_EXPORT void fill(QMenu &view, const KNMenu &menu);

} // namespace KNMenuView
