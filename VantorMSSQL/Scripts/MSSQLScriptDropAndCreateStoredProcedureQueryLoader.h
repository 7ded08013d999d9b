#pragma once

#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"

/// Drops a procedure, by its bare name, and makes it anew.
class MSSQLScriptDropAndCreateStoredProcedureQueryLoader : public MSSQLScriptCreateStoredProcedureQueryLoader
{
public:
    using MSSQLScriptCreateStoredProcedureQueryLoader::MSSQLScriptCreateStoredProcedureQueryLoader;

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;
};
