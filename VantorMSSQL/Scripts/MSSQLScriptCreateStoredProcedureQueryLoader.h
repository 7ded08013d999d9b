#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The CREATE script of a procedure. Names are not escaped.
class MSSQLScriptCreateStoredProcedureQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptCreateStoredProcedureQueryLoader(const QString &storedProcedure, const QString &inSchema)
        : m_targetStoredProcedure(storedProcedure)
        , m_targetStoredProcedureSchema(inSchema)
    {
    }

    const QString &targetStoredProcedure() const { return m_targetStoredProcedure; }
    const QString &targetStoredProcedureSchema() const { return m_targetStoredProcedureSchema; }

    /// The script, or a comment if there is none; errors are reported. `report` may be null. Blocks on the
    /// server.
    static QString creationQueryForStoredProcedure(const QString &storedProcedure, const QString &inSchema,
                                                   const VantorDBC &withConnectionDetails,
                                                   KNQueryReport *report = nullptr);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetStoredProcedure;
    QString m_targetStoredProcedureSchema;
};
