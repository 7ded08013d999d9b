#pragma once

#include "Desktop/Main/MainWindow.h"

/// Takes pictures of the window that generates scripts.
void showScripts(MainWindow &window, const QString &folder);
