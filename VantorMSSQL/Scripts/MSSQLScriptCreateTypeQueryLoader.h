#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The statement that creates an alias type, with names without escaping, or, as a corrected statement, a
/// table type.
class MSSQLScriptCreateTypeQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// `queryLoaderType` is the kind of the requesting tree entry; it does not change the text.
    MSSQLScriptCreateTypeQueryLoader(const QString &type, const QString &inSchema, int queryLoaderType)
        : m_targetType(type)
        , m_targetSchema(inSchema)
        , m_targetQueryLoaderType(queryLoaderType)
    {
    }

    const QString &targetType() const { return m_targetType; }
    const QString &targetSchema() const { return m_targetSchema; }
    int targetQueryLoaderType() const { return m_targetQueryLoaderType; }

    /// The statement, or "Unhandled" if the type does not exist; errors are reported. `report` may be null.
    /// Blocks on the server.
    static QString creationQueryForType(const QString &type, const QString &inSchema, int queryLoaderType,
                                        const VantorDBC &withConnectionDetails,
                                        KNQueryReport *report = nullptr);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetType;
    QString m_targetSchema;
    int m_targetQueryLoaderType;
};
