#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Export/MSSQLScriptBatches.h"
#include "Export/MSSQLScriptStatements.h"

/// Statements that look first whether an object exists. Pure; any thread.
class MSSQLScriptConditions
{
public:
    explicit MSSQLScriptConditions(const KNScriptOptions &options)
        : m_ifNotExists(options.ifNotExists)
    {
    }

    /// The batches, which do nothing for what exists if the options ask for that. Those without a name of
    /// their own run if the object did not exist before.
    QString script(const KNScriptObject &object, const QList<MSSQLScriptBatches::Batch> &batches) const;
    /// The batches, whose first alters a stub: nothing happens to an object that was there before.
    QString scriptOfStub(const KNScriptObject &object, const QList<MSSQLScriptBatches::Batch> &batches) const;
    /// A statement with its own condition.
    QString statement(const MSSQLScriptStatements::Statement &statement) const;

    static QString drop(const KNScriptObject &object);
    static QString dropForeignKey(const KNScriptObject &table, const QString &name);
    /// Drops the foreign keys of a table that the server named.
    static QString dropUnnamedForeignKeys(const KNScriptObject &table);
    /// Whether the batch adds such a key.
    static bool addsUnnamedForeignKey(const MSSQLScriptBatches::Batch &batch);
    static QString createSchema(const QString &schema);

private:
    QString scriptIf(const QString &objectCondition, const KNScriptObject &object,
                     const QList<MSSQLScriptBatches::Batch> &batches) const;

    const bool m_ifNotExists;
};
