#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Creates the folder `path` and its missing parents with access for the user only (mode 0700). Existing
/// folders are not changed. False if the folder does not exist afterwards. Any thread.
KNSHARED_EXPORT bool KNMakePrivateFolder(const QString &path);

/// The folder for the program's own data, such as logs: $XDG_STATE_HOME or its default. Any thread.
KNSHARED_EXPORT QString KNStateFolder();

/// Atomically replaces the file at `path`; only the user can read it (mode 0600), from its first byte on.
/// Creates the folder if necessary. On failure returns false and sets `why` to a text for the user; `why` may
/// be null. Any thread.
KNSHARED_EXPORT bool KNReplacePrivateFile(const QString &path, const QByteArray &content,
                                          QString *why = nullptr);
