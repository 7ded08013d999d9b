#pragma once

#include "UI/KNSharedUIExport.h"

#include <QIcon>
#include <QString>

/// The icons of programs and connectors: SVG files below ":/icons". Any module can add to them with a
/// resource of that prefix. "currentColor" in a file is replaced with the text colour, in light and dark
/// palettes.
namespace KNIcon {

/// Returns the icon of this name, such as "DatabaseTree-Table"; an empty icon if there is none.
KNSHAREDUI_EXPORT QIcon named(const QString &name);

} // namespace KNIcon
