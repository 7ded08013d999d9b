#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Export/MSSQLScriptBatches.h"

/// Statements that look first whether an object exists. Pure; any thread.
class MSSQLScriptConditions
{
public:
    explicit MSSQLScriptConditions(const KNScriptOptions &options)
        : m_ifNotExists(options.ifNotExists)
    {
    }

    /// The batch, which does nothing if the object exists and the options ask for that.
    QString script(const KNScriptObject &object, const MSSQLScriptBatches::Batch &batch) const;

    static QString drop(const KNScriptObject &object);
    static QString dropForeignKey(const KNScriptObject &table, const QString &name);
    static QString createSchema(const QString &schema);

private:
    const bool m_ifNotExists;
};
