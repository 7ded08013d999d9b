#pragma once

#include "KNSharedExport.h"

#include <QString>

/// The colours by which connections are told apart, each derived from its display name: the same name has the
/// same colour in every program. They stand out on light and on dark ground alike. Any thread.
namespace KNDBCTabColorHelper {

/// The colour of the connection `forId` is that of `alias` from now on, until the program ends; an empty
/// alias takes it away.
KNSHARED_EXPORT void setColorFromAliasTemporary(const QString &alias, const QString &forId);
/// As "#rrggbb"; null where there is none.
KNSHARED_EXPORT QString colorForId(const QString &connectionId);

} // namespace KNDBCTabColorHelper
