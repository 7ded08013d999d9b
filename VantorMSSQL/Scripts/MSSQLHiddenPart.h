#pragma once

#include <QString>

/// Catalog queries put a comment in place of a definition that the login may not see.
namespace MSSQLHiddenPart {

/// Whether the script holds such a comment: it fails, or creates another object than the one it was made of.
bool isIn(const QString &script);

} // namespace MSSQLHiddenPart
