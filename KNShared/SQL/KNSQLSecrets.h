#pragma once

#include "KNSharedExport.h"

#include <QString>

/// The SQL text with "********" in the place of every password that it gives to the server as a literal: what
/// stands behind PASSWORD = and its like, and the arguments of procedures that take passwords. Any thread.
KNSHARED_EXPORT QString KNSQLWithoutSecrets(const QString &sql);
