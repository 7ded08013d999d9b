#pragma once

#include "Autocomplete/KNSourceColumns.h"
#include "SQL/KNSignature.h"

#include <optional>

class KNSQLTokens;

/// The meaning of a name in a text.
struct KNSHARED_EXPORT KNNameReference
{
    enum class Kind {
        Variable,
        Local,  ///< a table that the text declares: a common table expression, a temporary table, a subquery
        Object, ///< of the database, even if it is not known there
        Column,
        Function, ///< built in
    };
    using Catalog = std::shared_ptr<const KNCompletionCatalog>;

    Kind kind = Kind::Object;
    QString name = {}; ///< without quotes
    QString type = {}; ///< of a variable; null if unknown
    /// Of the object, or of the table of a column: up to four parts, omitted ones are empty. Empty for
    /// everything that the text declares.
    QStringList path = {};
    const KNCompletionCatalog::Object *object = nullptr; ///< null if the database's names do not include it
    QList<Catalog> owners = {};                          ///< keep the object
    QList<KNSourceColumn> columns = {};                  ///< of a local table; the column itself for a column
    QString source = {};        ///< the name of a column's table in the statement; may be null
    qsizetype location = -1;    ///< where the text declares it, or the table of a column; -1 if it does not
    KNSignature signature = {}; ///< of a function
};

/// Finds the meaning of the name at a position (UTF-16 units) of the text. A position at the end of a name
/// belongs to it. The catalog may be null. Nullopt where no name stands. Pure.
KNSHARED_EXPORT std::optional<KNNameReference>
KNFindNameReference(const KNSQLTokens &tokens, qsizetype position, const KNNameReference::Catalog &catalog);
