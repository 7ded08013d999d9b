#pragma once

#include "Database/KNQueryDetails.h"
#include "KNSharedExport.h"

#include <QList>
#include <QStringList>

class KNSQLTokens;

/// The places of a name that a text can rename.
struct KNSQLRename
{
    enum class Kind {
        None,
        Alias,    ///< of a source of rows, where its statement sees it
        Variable, ///< in its batch
    };

    Kind kind = Kind::None;
    QString name;          ///< without quotes; a variable with its first character
    QList<KNRange> places; ///< in the order of the text
    qsizetype chosen = 0;  ///< the place at the caret
    QStringList taken;     ///< other names that would collide
};

/// Finds the alias or variable at a caret. Pure; linear in the length of the text.
KNSHARED_EXPORT KNSQLRename KNFindSQLRename(const KNSQLTokens &tokens, qsizetype caret);

/// Whether a text can be the new name of a variable: one token of the same kind.
KNSHARED_EXPORT bool KNIsSQLVariable(const KNSQLTokens &tokens, const QString &name);
