#pragma once

#include "Database/VantorDBC.h"

#include <QStringList>

/// The types, and the functions for defaults, that the designer offers for a column.
namespace MSSQLColumnTypes {

/// The server's types by its version banner, sorted. Those of SQL Server 2008 to 2022 if the banner is not
/// understood.
QStringList builtIn(const QString &version);
/// The types of the server's version, and behind them the alias types of the database. Blocks on the server:
/// any thread except the UI thread.
QStringList of(const VantorDBC &settings);

/// The functions for defaults by the server's version banner, likewise.
QStringList builtInDefaults(const QString &version);
/// The functions for defaults of the server's version. Blocks as of() does.
QStringList defaultsOf(const VantorDBC &settings);

} // namespace MSSQLColumnTypes
