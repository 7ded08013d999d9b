#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Makes the folder `path` and what is missing above it, so that only the user can enter them (mode 0700).
/// Folders that exist stay as they are. False when there is no such folder afterwards. Any thread.
KNSHARED_EXPORT bool KNMakePrivateFolder(const QString &path);
