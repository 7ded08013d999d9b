#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// Drops and recreates a table. The DROP line contains schema and table without escaping.
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
