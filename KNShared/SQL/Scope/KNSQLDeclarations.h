#pragma once

#include "SQL/Scope/KNSQLScope.h"
#include "SQL/Scope/KNSQLStatements.h"

/// Finds what statements before the caret declare.
namespace KNSQLDeclarations {

/// Variables and parameters of a statement, up to `end`; table variables are added to `tables` as well.
void addVariables(const KNSQLTokens &tokens, const KNSQLStatement &statement, qsizetype end,
                  QList<KNSQLVariable> *variables, KNSQLSources *tables);

/// The temporary table that a statement creates with its definition; nothing for SELECT INTO.
void addTemporaryTable(const KNSQLTokens &tokens, const KNSQLStatement &statement, KNSQLSources *tables);

} // namespace KNSQLDeclarations
