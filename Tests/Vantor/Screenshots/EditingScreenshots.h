#pragma once

#include <QString>

class MainWindow;

/// Takes pictures of an edited result and of the preview of its changes.
void showEditing(MainWindow &window, const QString &folder);
/// Takes pictures of the editors of single values.
void showValueEditing(MainWindow &window, const QString &folder);
