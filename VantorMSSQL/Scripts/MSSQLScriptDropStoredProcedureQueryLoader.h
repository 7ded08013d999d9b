#pragma once

#include "QueryLoader/KNQueryLoader.h"

/// The statement that drops a procedure. Delivers on the caller's thread.
class MSSQLScriptDropStoredProcedureQueryLoader : public KNQueryLoader
{
public:
    MSSQLScriptDropStoredProcedureQueryLoader(const QString &storedProcedure, const QString &inSchema)
        : m_targetStoredProcedure(storedProcedure)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetStoredProcedure() const { return m_targetStoredProcedure; }
    const QString &targetSchema() const { return m_targetSchema; }

    void beginLoadingQuery(const VantorDBC &details) override;

private:
    QString m_targetStoredProcedure;
    QString m_targetSchema;
};
