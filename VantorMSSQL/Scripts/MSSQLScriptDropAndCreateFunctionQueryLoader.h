#pragma once

#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"

/// Drops a function, named by schema, a dot and its name as they are, and makes it anew.
class MSSQLScriptDropAndCreateFunctionQueryLoader : public MSSQLScriptCreateFunctionQueryLoader
{
public:
    using MSSQLScriptCreateFunctionQueryLoader::MSSQLScriptCreateFunctionQueryLoader;

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;
};
