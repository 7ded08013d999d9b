#pragma once

#include "Database/VantorDBC.h"
#include "QueryLoader/KNQueryLoader.h"

/// A generator that reads the catalog: it works on the global queue and delivers there.
class MSSQLScriptQueryLoader : public KNQueryLoader
{
public:
    void beginLoadingQuery(const VantorDBC &details) final;

protected:
    /// The text to deliver, null when there is none. `report` is never null; it gets the failure when the
    /// text is not the whole script. Blocks on the server.
    virtual QString script(const VantorDBC &details, KNQueryReport *report) const = 0;

    /// For a script that drops an object and makes it anew: when making it has failed, the part that drops it
    /// must not run. `drop` is its length in UTF-16 units, with the line end behind it.
    static void guardDrop(qsizetype drop, KNQueryReport *report);
};
