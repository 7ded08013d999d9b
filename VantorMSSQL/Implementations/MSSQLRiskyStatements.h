#pragma once

#include <QStringList>

/// Finds the statements of a T-SQL batch that a user can easily regret: UPDATE and DELETE without a WHERE of
/// their own, DROP, ALTER TABLE with DROP COLUMN, and TRUNCATE TABLE. Temporary tables and table variables do
/// not count, and neither do the texts of procedures, functions, triggers and views, which do not run. A
/// WHERE in a subquery or in a common table expression is not the statement's own. Pure and linear; any
/// thread. Returns the statements as short texts of one line.
QStringList MSSQLRiskyStatements(const QString &batch);
