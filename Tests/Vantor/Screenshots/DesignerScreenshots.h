#pragma once

#include "Desktop/Main/MainWindow.h"

/// Takes pictures of the table designer's tabs and dialogs.
void showDesigner(MainWindow &window, const QString &folder);
