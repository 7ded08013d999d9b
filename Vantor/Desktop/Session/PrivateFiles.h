#pragma once

#include <QString>

/// Files of the program that only the user can read. Any thread.
namespace PrivateFiles {

/// A folder below the XDG state folder, for data that one start of the program leaves for the next.
QString stateFolder(const QString &name);
/// A folder below the XDG data folder, for data that the user collects.
QString dataFolder(const QString &name);
/// A file or folder name derived from any text.
QString fileNameFor(const QString &text);

} // namespace PrivateFiles
