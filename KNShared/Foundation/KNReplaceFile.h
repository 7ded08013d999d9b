#pragma once

#include "KNSharedExport.h"

#include <QFileDevice>
#include <QString>

#include <optional>

/// Replaces the file at `path` with `content` as a whole, or leaves it as it is: the content is on the disk
/// before it takes the old file's place. A symbolic link stays; its target is replaced.
///
/// `permissions` are those of the new file from its first byte on; without them it has those of the old file,
/// or the user's default. False when the content could not be written whole, with the reason for the user in
/// `why`, which may be null. Blocks; any thread.
KNSHARED_EXPORT bool KNReplaceFile(const QString &path, const QByteArray &content, QString *why = nullptr,
                                   std::optional<QFileDevice::Permissions> permissions = {});
