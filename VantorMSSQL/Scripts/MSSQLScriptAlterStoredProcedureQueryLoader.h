#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The ALTER script of a procedure. Names are not escaped.
class MSSQLScriptAlterStoredProcedureQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptAlterStoredProcedureQueryLoader(const QString &procedure, const QString &schema)
        : m_targetStoredProcedure(procedure)
        , m_schema(schema)
    {
    }

    const QString &targetStoredProcedure() const { return m_targetStoredProcedure; }
    const QString &schema() const { return m_schema; }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetStoredProcedure;
    QString m_schema;
};
