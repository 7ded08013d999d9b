#include "Engine/Parse/Parser.h"
#include "Engine/Parse/Parsers.h"
#include "Types/Collation.h"

namespace SampleServer {

std::vector<Ast::StatementPtr> parseBatch(std::string_view sql, const ParserOptions &options)
{
    ParseContext context;
    context.sql = sql;
    context.tokens = tokenize(sql, options.quotedIdentifiers);
    context.edition = options.edition;
    for (const std::string &name : options.declaredVariables)
        context.declared.insert(foldedName(name));
    Parsers parsers(context);
    return parsers.statements.parseStatements();
}

} // namespace SampleServer
