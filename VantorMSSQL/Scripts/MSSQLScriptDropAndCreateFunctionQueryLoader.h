#pragma once

#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"

/// Drops and recreates a function, given as schema, a dot and its name. The names are not escaped.
class MSSQLScriptDropAndCreateFunctionQueryLoader : public MSSQLScriptCreateFunctionQueryLoader
{
public:
    using MSSQLScriptCreateFunctionQueryLoader::MSSQLScriptCreateFunctionQueryLoader;

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;
};
