#pragma once

#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"

/// Drops an alias type and makes it anew.
class MSSQLScriptDropAndCreateTypeQueryLoader : public MSSQLScriptCreateTypeQueryLoader
{
public:
    using MSSQLScriptCreateTypeQueryLoader::MSSQLScriptCreateTypeQueryLoader;

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;
};
