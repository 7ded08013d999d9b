#pragma once

#include "DatabaseTree/KNMenu.h"
#include "QueryLoader/KNQueryLoader.h"

#include <QStringList>

/// The scripts that the menu of an entry offers.
namespace MenuScripts {

/// The titles that find() accepts for this menu, in the menu's order.
QStringList titles(const KNMenu &menu);

/// Returns the script with this title, in any letter case: that of the item itself, or the one that the items
/// of its submenu send to different destinations. Null if there is none.
KNQueryLoaderPtr find(const KNMenu &menu, const QString &title);

/// Runs a script and waits for its text; null if it failed. On the main thread.
QString textOf(const KNQueryLoaderPtr &script, const VantorDBC &settings);

} // namespace MenuScripts
