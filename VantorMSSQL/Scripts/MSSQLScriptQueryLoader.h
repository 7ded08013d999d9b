#pragma once

#include "Database/VantorDBC.h"
#include "QueryLoader/KNQueryLoader.h"

/// A generator that reads the catalog. It runs on the global queue and delivers there.
class MSSQLScriptQueryLoader : public KNQueryLoader
{
public:
    void beginLoadingQuery(const VantorDBC &details) final;

protected:
    /// The text to deliver; null if there is none. `report` is never null; it receives the failure if the
    /// script is incomplete. Blocks on the server.
    virtual QString script(const VantorDBC &details, KNQueryReport *report) const = 0;

    /// For a script that drops and recreates an object: if the CREATE part failed, the DROP part must not
    /// run. `drop` is its length in UTF-16 units, including the following line end.
    static void guardDrop(qsizetype drop, KNQueryReport *report);
};
