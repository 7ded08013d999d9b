#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Makes the folder `path` and what is missing above it, so that only the user can enter them (mode 0700).
/// Folders that exist stay as they are. False when there is no such folder afterwards. Any thread.
KNSHARED_EXPORT bool KNMakePrivateFolder(const QString &path);

/// Where programs keep what is of use to themselves only, such as logs: $XDG_STATE_HOME, or what stands in
/// for it. Any thread.
KNSHARED_EXPORT QString KNStateFolder();

/// Replaces the file at `path` as a whole, or not at all; only the user can read it (mode 0600), from its
/// first byte on. Makes its folder where there is none. False, with `why` for the user, when that fails;
/// `why` may be null. Any thread.
KNSHARED_EXPORT bool KNReplacePrivateFile(const QString &path, const QByteArray &content,
                                          QString *why = nullptr);
