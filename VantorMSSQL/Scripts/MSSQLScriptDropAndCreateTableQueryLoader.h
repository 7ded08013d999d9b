#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// Drops a table and makes it anew. The line that drops it names schema and table as they are.
class MSSQLScriptDropAndCreateTableQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptDropAndCreateTableQueryLoader(const QString &tableName, const QString &inSchema)
        : m_targetTableName(tableName)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetTableName() const { return m_targetTableName; }
    const QString &targetSchema() const { return m_targetSchema; }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetTableName;
    QString m_targetSchema;
};
