#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// Drops an alias type and makes it anew.
class MSSQLScriptDropAndCreateTypeQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// `queryLoaderType` is the kind of the tree entry that asks; it does not change the text.
    MSSQLScriptDropAndCreateTypeQueryLoader(const QString &type, const QString &inSchema, int queryLoaderType)
        : m_targetType(type)
        , m_targetSchema(inSchema)
        , m_targetQueryLoaderType(queryLoaderType)
    {
    }

    const QString &targetType() const { return m_targetType; }
    const QString &targetSchema() const { return m_targetSchema; }
    int targetQueryLoaderType() const { return m_targetQueryLoaderType; }

protected:
    QString script(const VantorDBC &details) const override;

private:
    QString m_targetType;
    QString m_targetSchema;
    int m_targetQueryLoaderType;
};
