#pragma once

#include "UI/KNSharedUIExport.h"

#include <QIcon>
#include <QString>

/// The icons of programs and connectors: SVG files below ":/icons", which everybody may add to with a
/// resource of that prefix. What a file paints in "currentColor" takes the colour of texts, in light and
/// dark.
namespace KNIcon {

/// The icon of this name, such as "DatabaseTree-Table"; one without a picture when there is none.
KNSHAREDUI_EXPORT QIcon named(const QString &name);

} // namespace KNIcon
