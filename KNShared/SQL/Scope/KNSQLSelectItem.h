#pragma once

#include "SQL/Scope/KNSQLSource.h"
#include "SQL/Scope/KNSQLTokens.h"

#include <optional>

/// Returns the column that an item of a select list gives, from its tokens; nullopt for one without a name.
std::optional<KNSQLOutput> KNSQLSelectItem(const KNSQLTokens &tokens, qsizetype begin, qsizetype end);

/// Reads the definition of a column in a list in parentheses; nullopt for a constraint.
std::optional<KNSQLOutput> KNSQLColumnDefinition(const KNSQLTokens &tokens, qsizetype begin, qsizetype end);

/// Reads the definitions of columns in the parentheses that open at `index`.
QList<KNSQLOutput> KNSQLColumnDefinitions(const KNSQLTokens &tokens, qsizetype index, qsizetype end);
