#pragma once

#include "Desktop/Main/MainWindow.h"

/// Takes pictures of the pages of the import wizard, and of its dialog for a new table.
void showImport(MainWindow &window, const QString &folder);
