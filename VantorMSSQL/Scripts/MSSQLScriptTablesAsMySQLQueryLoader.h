#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// Every table of a database with its rows as a script for MySQL.
class MSSQLScriptTablesAsMySQLQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// The script. Failures are shown to the user, and the first one is recorded in `report`, which may be
    /// null. Blocks on the server.
    QString doActualLoading(const VantorDBC &details, KNQueryReport *report = nullptr) const;

    bool writeQuery(const VantorDBC &details, QIODevice &device, KNQueryReport *report) const override;

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override
    {
        return doActualLoading(details, report);
    }
};
