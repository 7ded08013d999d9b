#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// Every table of a database with its rows as a script for MySQL.
class MSSQLScriptTablesAsMySQLQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// The script; what fails is reported. Blocks on the server.
    QString doActualLoading(const VantorDBC &details) const;

protected:
    QString script(const VantorDBC &details) const override { return doActualLoading(details); }
};
