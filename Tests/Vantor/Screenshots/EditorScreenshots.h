#pragma once

#include <QString>

class MainWindow;

namespace EditorScreenshots {

/// Takes pictures of an editor with the list of names, and with a signature.
void take(MainWindow &window, const QString &folder);

} // namespace EditorScreenshots
