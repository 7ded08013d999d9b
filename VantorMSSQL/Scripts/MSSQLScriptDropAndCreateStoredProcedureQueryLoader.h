#pragma once

#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"

/// Drops a procedure, by its name without the schema, and recreates it.
class MSSQLScriptDropAndCreateStoredProcedureQueryLoader : public MSSQLScriptCreateStoredProcedureQueryLoader
{
public:
    using MSSQLScriptCreateStoredProcedureQueryLoader::MSSQLScriptCreateStoredProcedureQueryLoader;

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;
};
