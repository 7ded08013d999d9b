#pragma once

#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"

/// Drops and recreates an alias type.
class MSSQLScriptDropAndCreateTypeQueryLoader : public MSSQLScriptCreateTypeQueryLoader
{
public:
    using MSSQLScriptCreateTypeQueryLoader::MSSQLScriptCreateTypeQueryLoader;

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;
};
