#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The statement that drops a table. Delivers on the caller's thread.
class MSSQLScriptDropTableQueryLoader : public KNQueryLoader
{
public:
    MSSQLScriptDropTableQueryLoader(const QString &tableName, const QString &inSchema)
        : m_targetTableName(tableName)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetTableName() const { return m_targetTableName; }
    const QString &targetSchema() const { return m_targetSchema; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QString m_targetTableName;
    QString m_targetSchema;
};
