#include "Engine/Parse/ModuleParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parsers.h"
#include "Types/Collation.h"

namespace SampleServer {

using namespace Ast;

bool ModuleParser::atModule() const
{
    return isKeyword("VIEW") || isKeyword("PROCEDURE") || isKeyword("PROC") || isKeyword("FUNCTION") ||
           isKeyword("TRIGGER");
}

/// A module is the whole batch: no statement may precede it, and all following text belongs to it.
StatementPtr ModuleParser::parseModule(std::size_t start, bool create, bool alter)
{
    const std::string word = current().keyword;
    const bool isProcedure = word == "PROCEDURE" || word == "PROC";
    if (start != 0)
        fail(EngineError(111, 15, 1,
                         "'" +
                             std::string(isProcedure ? "CREATE/ALTER "
                                         : create    ? "CREATE "
                                                     : "ALTER ") +
                             (isProcedure ? "PROCEDURE" : word) +
                             "' must be the first statement in a query batch.",
                         ErrorEffect::EndsBatch),
             current().line);
    const Token &keyword = current();
    advance();
    auto definition = std::make_shared<ModuleDefinition>();
    definition->name = parseObjectName();
    m_context.module = definition->name.object();
    if (word == "VIEW")
        parseViewRest(*definition);
    else if (word == "FUNCTION")
        parseFunctionRest(*definition);
    else if (word == "TRIGGER")
        parseTriggerRest(*definition);
    else
        parseProcedureRest(*definition);
    definition->references = std::move(m_context.references);
    // The catalog stores the text as if it had been created with CREATE.
    const Token &first = m_context.tokens[start];
    CreateModule node;
    node.text = std::string(m_context.sql.substr(0, first.offset)) + "CREATE " +
                std::string(m_context.sql.substr(keyword.offset));
    node.definition = std::move(definition);
    node.create = create;
    node.alter = alter;
    return statement(std::move(node));
}

/// WITH ENCRYPTION, SCHEMABINDING, RECOMPILE, EXECUTE AS ...
void ModuleParser::parseModuleOptions(ModuleDefinition &module)
{
    if (!acceptKeyword("WITH"))
        return;
    do {
        const std::string option = current().keyword;
        advance();
        if (option == "EXECUTE" || option == "EXEC") {
            expectKeyword("AS");
            advance();
        } else if (option == "RETURNS") {
            expectKeyword("NULL");
            expectKeyword("ON");
            expectKeyword("NULL");
            expectName();
            module.nullOnNull = true;
        } else if (option == "ENCRYPTION") {
            module.encrypted = true;
        } else if (option == "SCHEMABINDING") {
            module.schemaBound = true;
        } else if (option != "RECOMPILE" && option != "VIEW_METADATA") {
            --m_context.at;
            refuse("WITH " + option);
        }
    } while (acceptSymbol(","));
}

void ModuleParser::parseViewRest(ModuleDefinition &module)
{
    module.kind = ObjectKind::View;
    if (isSymbol("("))
        for (KeyColumn &column : m_parsers.tables.parseKeyColumns())
            module.columns.push_back(std::move(column.name));
    parseModuleOptions(module);
    expectKeyword("AS");
    module.query = m_parsers.queries.parseSelect();
    if (acceptKeyword("WITH")) {
        expectKeyword("CHECK");
        expectKeyword("OPTION");
    }
    while (acceptSymbol(";")) {
    }
    if (current().kind != TokenKind::End)
        failHere();
}

void ModuleParser::parseParameters(ModuleDefinition &module)
{
    while (current().kind == TokenKind::Variable) {
        ParameterDefinition parameter;
        parameter.name = current().value;
        if (!m_context.declared.insert(foldedName(parameter.name)).second)
            fail(Errors::variableAlreadyDeclared(parameter.name), current().line);
        advance();
        acceptKeyword("AS");
        if (isKeyword("CURSOR"))
            refuse("cursors");
        parameter.type = parseTypeName();
        if (acceptKeyword("NULL")) { // as natively compiled procedures may say
        } else if (isKeyword("NOT") && ahead(1).keyword == "NULL") {
            advance(2);
        }
        if (acceptSymbol("=")) {
            const bool bareWord = isName() && current().kind == TokenKind::Word;
            if (bareWord)
                parameter.defaultValue = make(Literal{{TypeId::NVarChar, 128, 0, 0}, Value(take().value)});
            else
                parameter.defaultValue = m_parsers.expressions.parseExpression();
        }
        parameter.output = acceptKeyword("OUTPUT") || acceptKeyword("OUT");
        if (isKeyword("READONLY")) {
            advance();
            parameter.readOnly = true;
            m_context.declared.erase(foldedName(parameter.name));
            m_context.declaredTables.insert(foldedName(parameter.name));
        }
        module.parameters.push_back(std::move(parameter));
        if (!acceptSymbol(","))
            return;
    }
}

void ModuleParser::parseProcedureRest(ModuleDefinition &module)
{
    module.kind = ObjectKind::Procedure;
    if (acceptSymbol(";")) // ;1, the number of a procedure, has no effect
        advance();
    const bool parenthesized = acceptSymbol("(");
    parseParameters(module);
    if (parenthesized)
        expectSymbol(")");
    parseModuleOptions(module);
    if (acceptKeyword("FOR")) {
        expectKeyword("REPLICATION");
    }
    if (acceptKeyword("AS") && isKeyword("EXTERNAL"))
        refuse("CLR modules");
    m_context.mayReturnValue = true;
    module.statements = m_parsers.statements.parseStatements();
}

void ModuleParser::parseFunctionRest(ModuleDefinition &module)
{
    expectSymbol("(");
    parseParameters(module);
    expectSymbol(")");
    if (!isKeyword("RETURNS"))
        failHere();
    advance();
    if (acceptKeyword("TABLE"))
        return parseInlineBody(module);
    if (current().kind == TokenKind::Variable) {
        module.kind = ObjectKind::TableFunction;
        module.resultTable.name.parts = {current().value};
        m_context.declaredTables.insert(foldedName(current().value));
        advance();
        expectKeyword("TABLE");
        m_parsers.tables.parseTableElements(module.resultTable);
    } else {
        module.kind = ObjectKind::ScalarFunction;
        module.returns = parseTypeName();
        m_context.mayReturnValue = true;
    }
    parseModuleOptions(module);
    acceptKeyword("AS");
    if (isKeyword("EXTERNAL"))
        refuse("CLR modules");
    if (!isKeyword("BEGIN"))
        failHere();
    module.statements = m_parsers.statements.parseStatements();
}

/// RETURN (query) of an inline function.
void ModuleParser::parseInlineBody(ModuleDefinition &module)
{
    module.kind = ObjectKind::InlineFunction;
    parseModuleOptions(module);
    acceptKeyword("AS");
    expectKeyword("RETURN");
    std::size_t parentheses = 0;
    while (isSymbol("(") &&
           (ahead(1).keyword == "WITH" || ahead(1).source == "(" || ahead(1).keyword == "SELECT") &&
           !(ahead(1).keyword == "SELECT" && closesBeforeSetOperator())) {
        advance();
        ++parentheses;
    }
    module.query = m_parsers.queries.parseSelect();
    for (; parentheses > 0; --parentheses)
        expectSymbol(")");
    while (acceptSymbol(";")) {
    }
    if (current().kind != TokenKind::End)
        failHere();
}

/// Whether the current parenthesis belongs to (SELECT ...) UNION (SELECT ...) and not to the whole query.
bool ModuleParser::closesBeforeSetOperator() const
{
    std::size_t at = 0;
    for (int depth = 0; ahead(at).kind != TokenKind::End; ++at) {
        depth += ahead(at).source == "(" ? 1 : ahead(at).source == ")" ? -1 : 0;
        if (depth == 0)
            break;
    }
    const std::string &next = ahead(at + 1).keyword;
    return next == "UNION" || next == "EXCEPT" || next == "INTERSECT";
}

void ModuleParser::parseTriggerRest(ModuleDefinition &module)
{
    module.kind = ObjectKind::Trigger;
    expectKeyword("ON");
    if (isKeyword("DATABASE") || isKeyword("ALL"))
        refuse("triggers on databases and servers");
    module.parent = parseObjectName();
    parseModuleOptions(module);
    if (isKeyword("INSTEAD")) {
        advance();
        expectKeyword("OF");
        module.insteadOf = true;
    } else if (!acceptKeyword("FOR")) {
        if (!isKeyword("AFTER"))
            failHere();
        advance();
    }
    do {
        if (acceptKeyword("INSERT"))
            module.onInsert = true;
        else if (acceptKeyword("UPDATE"))
            module.onUpdate = true;
        else {
            expectKeyword("DELETE");
            module.onDelete = true;
        }
    } while (acceptSymbol(","));
    if (acceptKeyword("WITH"))
        refuse("WITH APPEND");
    if (acceptKeyword("NOT")) {
        expectKeyword("FOR");
        expectKeyword("REPLICATION");
    }
    expectKeyword("AS");
    module.statements = m_parsers.statements.parseStatements();
}

} // namespace SampleServer
