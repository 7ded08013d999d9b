#pragma once

#include "Database/VantorDBC.h"
#include "QueryLoader/KNQueryLoader.h"

/// A generator that reads the catalog: it works on the global queue and delivers there.
class MSSQLScriptQueryLoader : public KNQueryLoader
{
public:
    void beginLoadingQuery(const VantorDBC &details) final;

protected:
    /// The text to deliver, null when there is none. Blocks on the server.
    virtual QString script(const VantorDBC &details) const = 0;
};
