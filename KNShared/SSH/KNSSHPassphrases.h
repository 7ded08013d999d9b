#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QMap>

/// The passphrases of SSH keys that the user has entered, by ssh's prompt for them, in memory until the
/// program ends. Any thread.
namespace KNSSHPassphrases {

/// Remembers a passphrase, and keeps it out of the log.
KNSHARED_EXPORT void set(const QString &prompt, const QString &passphrase);
KNSHARED_EXPORT void forget(const QString &prompt);
KNSHARED_EXPORT QMap<QString, QString> all();

/// The prompt that an error of KNSSHCommand::NeedsPassphrase contains; null if there is none.
KNSHARED_EXPORT QString promptIn(const KNError &error);
KNSHARED_EXPORT QVariantMap errorInfo(const QString &prompt);

} // namespace KNSSHPassphrases
