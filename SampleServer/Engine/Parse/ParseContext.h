#pragma once

#include "Engine/Edition.h"
#include "Engine/Parse/AstExpressions.h"
#include "Engine/Parse/Lexer.h"

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace SampleServer {

/// State shared by the parsers of one batch: the tokens, the current position, and what is allowed there.
struct ParseContext
{
    std::string_view sql;
    std::vector<Token> tokens; ///< the last one is End
    Edition edition = Edition::Sql2022;
    std::size_t at = 0;
    int nesting = 0;
    int setOperators = 0; ///< of the statement
    int statementLine = 1;
    int loops = 0;                           ///< number of enclosing WHILE loops
    std::string module;                      ///< the module being defined, for errors
    bool allowsColumns = true;               ///< not in DEFAULT
    bool allowsSubqueries = true;            ///< not in constraints and PRINT
    std::set<std::string> declared;          ///< folded names of the variables declared so far
    std::set<std::string> declaredTables;    ///< likewise of table variables
    std::set<std::string> mayBeTables;       ///< declared with a type that may be a table type
    bool mayReturnValue = false;             ///< RETURN takes a value here
    std::vector<Ast::ObjectName> references; ///< the tables, views and procedures named so far
};

} // namespace SampleServer
