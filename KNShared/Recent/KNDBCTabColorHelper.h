#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Colours that distinguish connections, derived from the display name: the same name has the same colour in
/// every program. They are readable on light and dark backgrounds. Any thread.
namespace KNDBCTabColorHelper {

/// Assigns the colour of `alias` to the connection `forId` until the program ends; an empty alias removes it.
KNSHARED_EXPORT void setColorFromAliasTemporary(const QString &alias, const QString &forId);
/// Assigns a colour that the user has chosen, as "#rrggbb".
KNSHARED_EXPORT void setColorForId(const QString &colour, const QString &connectionId);
/// Returns the colour as "#rrggbb"; null if there is none.
KNSHARED_EXPORT QString colorForId(const QString &connectionId);

} // namespace KNDBCTabColorHelper
