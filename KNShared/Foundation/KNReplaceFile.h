#pragma once

#include "KNSharedExport.h"

#include <QFileDevice>
#include <QString>

#include <optional>

/// Atomically replaces the file at `path` with `content`, or leaves it unchanged: the content is written to
/// disk before it replaces the old file. A symbolic link is kept; its target is replaced.
///
/// `permissions` apply to the new file from its first byte on; by default it has those of the old file, or
/// the user's default. On failure returns false and sets `why` to a reason for the user; `why` may be null.
/// Blocks; any thread.
KNSHARED_EXPORT bool KNReplaceFile(const QString &path, const QByteArray &content, QString *why = nullptr,
                                   std::optional<QFileDevice::Permissions> permissions = {});
