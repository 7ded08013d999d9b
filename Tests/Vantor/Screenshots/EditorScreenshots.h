#pragma once

#include <QString>

class MainWindow;

namespace EditorScreenshots {

/// Takes pictures of an editor with the list of names, a signature and the field of a new name, and of the
/// dialog of the snippets.
void take(MainWindow &window, const QString &folder);

} // namespace EditorScreenshots
