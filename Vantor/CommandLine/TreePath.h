#pragma once

#include "Foundation/KNError.h"

#include <QString>
#include <QStringList>

#include <optional>

/// Paths in the object tree as the command line writes them: display names separated by slashes. In a name \/
/// stands for a slash, \\ for a backslash, and \n, \r and \t have their usual meaning.
namespace TreePath {

/// Splits a path into names; an empty path has none. Slashes at both ends are ignored. nullopt, with an
/// error, for a backslash before any other character.
std::optional<QStringList> names(const QString &path, KNError *error);
/// Escapes a name for names().
QString escaped(const QString &name);

} // namespace TreePath
