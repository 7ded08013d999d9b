#pragma once

#include "KNSharedExport.h"

#include <QStringList>

/// The SQL text with "********" in the place of every password that it passes to the server as a literal:
/// what follows PASSWORD = and its like, variables named like passwords, the arguments of procedures and
/// functions that take passwords, and the same inside of texts that are run or passed on. `secrets`, which
/// may be null, receives the texts that were masked. Pure; any thread.
KNSHARED_EXPORT QString KNSQLWithoutSecrets(const QString &sql, QStringList *secrets = nullptr);

/// A text about that SQL, such as a server's message that quotes it, with the secrets masked.
KNSHARED_EXPORT QString KNTextWithoutSecrets(const QString &text, const QStringList &secrets);
