#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The statement that drops a type. Names are not escaped. Delivers on the caller's thread.
class MSSQLScriptDropTypeQueryLoader : public KNQueryLoader
{
public:
    /// `queryLoaderType` is the kind of the requesting tree entry; it does not change the text.
    MSSQLScriptDropTypeQueryLoader(const QString &type, const QString &inSchema, int queryLoaderType)
        : m_targetType(type)
        , m_targetSchema(inSchema)
        , m_targetQueryLoaderType(queryLoaderType)
    {
    }

    const QString &targetType() const { return m_targetType; }
    const QString &targetSchema() const { return m_targetSchema; }
    int targetQueryLoaderType() const { return m_targetQueryLoaderType; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QString m_targetType;
    QString m_targetSchema;
    int m_targetQueryLoaderType;
};
