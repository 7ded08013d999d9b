#pragma once

#include "DatabaseTree/KNMenu.h"
#include "QueryLoader/KNQueryLoader.h"

#include <QStringList>

/// The scripts that the menu of an entry offers.
namespace MenuScripts {

/// The titles that find() knows in this menu, in their order.
QStringList titles(const KNMenu &menu);

/// The script with this title, in any case: that of the item itself, or the one that the items of its submenu
/// send to different places. Null when there is none.
KNQueryLoaderPtr find(const KNMenu &menu, const QString &title);

/// Runs a script and waits for its text, which is null when it failed. On the main thread.
QString textOf(const KNQueryLoaderPtr &script, const VantorDBC &settings);

} // namespace MenuScripts
