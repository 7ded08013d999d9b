#pragma once

#include "KNSharedExport.h"

#include <QStringList>

/// Replaces every password that an SQL text contains as a literal with "********": the values of PASSWORD =
/// and similar options, of variables named like passwords, and password arguments of procedures and
/// functions, also in nested SQL texts that are executed or passed on. `secrets`, which may be null, receives
/// the masked texts. Pure; any thread.
KNSHARED_EXPORT QString KNSQLWithoutSecrets(const QString &sql, QStringList *secrets = nullptr);

/// Whether a variable or a parameter of this name, with its @, is taken to hold a password or another secret.
KNSHARED_EXPORT bool KNSQLIsSecretVariable(QStringView name);

/// Masks the secrets in a text about that SQL, such as a server message that quotes it.
KNSHARED_EXPORT QString KNTextWithoutSecrets(const QString &text, const QStringList &secrets);
