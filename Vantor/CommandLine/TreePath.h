#pragma once

#include "Foundation/KNError.h"

#include <QString>
#include <QStringList>

#include <optional>

/// Ways through the object tree as the command line writes them: display names with slashes between them.
/// Inside of a name \/ stands for a slash, \\ for a backslash, and \n, \r and \t for what they always do.
namespace TreePath {

/// The names of a path; none for an empty one. Slashes at both ends mean nothing. Empty, with an error, for a
/// backslash before anything else.
std::optional<QStringList> names(const QString &path, KNError *error);
/// A name as names() reads it.
QString escaped(const QString &name);

} // namespace TreePath
