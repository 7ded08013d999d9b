#pragma once

#include <QString>

/// Files of the program that only the user can read. Any thread.
namespace PrivateFiles {

/// Below the XDG state folder: what one start of the program leaves for the next.
QString stateFolder(const QString &name);
/// Below the XDG data folder: what the user collects.
QString dataFolder(const QString &name);
/// A name for a file or folder that stands for any text.
QString fileNameFor(const QString &text);

} // namespace PrivateFiles
