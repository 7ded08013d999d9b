#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The statement that drops an index, given by a three-part name. Delivers on the caller's thread.
class MSSQLScriptDropIndexQueryLoader : public KNQueryLoader
{
public:
    MSSQLScriptDropIndexQueryLoader(const QString &indexName, const QString &inTable, const QString &inSchema)
        : m_indexName(indexName)
        , m_tableName(inTable)
        , m_schema(inSchema)
    {
    }

    const QString &indexName() const { return m_indexName; }
    const QString &tableName() const { return m_tableName; }
    const QString &schema() const { return m_schema; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QString m_indexName;
    QString m_tableName;
    QString m_schema;
};
