#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The statement that drops a column. Delivers on the caller's thread.
class MSSQLScriptDropColumnInTableQueryLoader : public KNQueryLoader
{
public:
    MSSQLScriptDropColumnInTableQueryLoader(const QString &columnName, const QString &inTable,
                                            const QString &inSchema)
        : m_targetColumnName(columnName)
        , m_targetTableName(inTable)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetColumnName() const { return m_targetColumnName; }
    const QString &targetTableName() const { return m_targetTableName; }
    const QString &targetSchema() const { return m_targetSchema; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QString m_targetColumnName;
    QString m_targetTableName;
    QString m_targetSchema;
};
