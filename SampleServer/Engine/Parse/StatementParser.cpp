#include "Engine/Parse/StatementParser.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parsers.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"

namespace SampleServer {

using namespace Ast;

std::vector<StatementPtr> StatementParser::parseStatements()
{
    std::vector<StatementPtr> statements;
    while (true) {
        while (acceptSymbol(";")) {
        }
        if (current().kind == TokenKind::End)
            return statements;
        statements.push_back(parseStatement());
    }
}

StatementPtr StatementParser::parseStatement()
{
    const NestingGuard guard(*this);
    while (acceptSymbol(";")) {
    }
    const int line = current().line;
    m_context.statementLine = line;
    m_context.setOperators = 0;
    const bool isFirst = m_context.at == 0;
    const std::string keyword = current().keyword;
    StatementPtr result;
    if (isSymbol("(") && atSubquery())
        result = statement(std::move(*m_parsers.queries.parseSelect()));
    else if (!keyword.empty())
        result = parseControlStatement(keyword);
    if (!result && isFirst && isName())
        result = parseExecute();
    if (!result)
        failHere();
    result->line = line;
    if (isKeyword("WITH"))
        fail(EngineError(319, 15, 1,
                         "Incorrect syntax near the keyword 'with'. If this statement is a common table "
                         "expression, an xmlnamespaces clause or a change tracking context clause, the "
                         "previous statement must be terminated with a semicolon.",
                         ErrorEffect::EndsBatch),
             current().line);
    while (acceptSymbol(";")) {
    }
    return result;
}

StatementPtr StatementParser::parseDataStatement(const std::string &keyword)
{
    if (keyword == "SELECT")
        return statement(std::move(*m_parsers.queries.parseSelect()));
    if (keyword == "WITH")
        return parseWithStatement();
    if (keyword == "INSERT")
        return m_parsers.changes.parseInsert();
    if (keyword == "UPDATE")
        return m_parsers.changes.parseUpdate();
    if (keyword == "DELETE")
        return m_parsers.changes.parseDelete();
    if (keyword == "UPDATETEXT")
        return m_parsers.changes.parseUpdateText();
    return parseDefinitionStatement(keyword);
}

StatementPtr StatementParser::parseExecute()
{
    Execute node;
    if (acceptSymbol("(")) {
        node.text = m_parsers.expressions.parseExpression();
        expectSymbol(")");
        return statement(std::move(node));
    }
    if (current().kind == TokenKind::Variable && ahead(1).kind == TokenKind::Symbol &&
        ahead(1).value == "=") {
        node.statusVariable = expectVariable();
        expectSymbol("=");
    }
    if (current().kind == TokenKind::Variable)
        node.procedureVariable = expectVariable();
    else
        node.procedure = m_context.references.emplace_back(parseObjectName());
    const auto startsArgument = [this] {
        const TokenKind kind = current().kind;
        return (kind != TokenKind::Symbol && kind != TokenKind::Word && kind != TokenKind::End) ||
               isSymbol("-") || isKeyword("NULL") || isKeyword("DEFAULT") || isName();
    };
    if (!startsArgument())
        return statement(std::move(node));
    do {
        Execute::Argument argument;
        if (current().kind == TokenKind::Variable && ahead(1).kind == TokenKind::Symbol &&
            ahead(1).value == "=") {
            argument.name = current().value;
            advance(2);
        }
        if (isName() && current().kind == TokenKind::Word) // an unquoted name is text, as in EXEC sp_help t
            argument.value = make(Literal{{TypeId::NVarChar, 128, 0, 0}, Value(take().value)});
        else if (current().kind == TokenKind::Variable &&
                 m_context.declaredTables.contains(foldedName(current().value)))
            argument.value = make(VariableReference{take().value});
        else if (!acceptKeyword("DEFAULT"))
            argument.value = m_parsers.expressions.parseExpression();
        argument.output = acceptKeyword("OUTPUT") || acceptKeyword("OUT");
        node.arguments.push_back(std::move(argument));
    } while (acceptSymbol(","));
    return statement(std::move(node));
}

StatementPtr StatementParser::parseTransaction(Transaction::Kind kind)
{
    const bool named = acceptKeyword("TRAN") || acceptKeyword("TRANSACTION");
    Transaction node{kind, {}};
    if (!named && isKeyword("WORK"))
        advance();
    else if (named && isName())
        node.name = expectName();
    else if (named && current().kind == TokenKind::Variable)
        node.name = expectVariable();
    if (kind == Transaction::Kind::Save && node.name.empty())
        failHere();
    return statement(std::move(node));
}

StatementPtr StatementParser::parseControlStatement(const std::string &keyword)
{
    if (keyword == "BEGIN")
        return parseBegin();
    if (keyword == "IF")
        return parseIf();
    if (keyword == "WHILE")
        return parseWhile();
    if (keyword == "DECLARE")
        return parseDeclare();
    if (keyword == "SET")
        return parseSet();
    if (keyword == "RAISERROR")
        return parseRaiseError();
    if (keyword == "WAITFOR")
        return parseWaitFor();
    if (keyword == "EXEC" || keyword == "EXECUTE") {
        advance();
        return parseExecute();
    }
    if (keyword == "COMMIT" || keyword == "ROLLBACK" || keyword == "SAVE") {
        advance();
        return parseTransaction(keyword == "COMMIT"     ? Transaction::Kind::Commit
                                : keyword == "ROLLBACK" ? Transaction::Kind::Rollback
                                                        : Transaction::Kind::Save);
    }
    if (keyword == "BREAK" || keyword == "CONTINUE")
        return parseLoopExit(keyword == "BREAK");
    if (acceptKeyword("PRINT")) {
        const ScopedValue<bool> scalar(m_context.allowsSubqueries, false);
        return statement(Print{m_parsers.expressions.parseExpression()});
    }
    if (acceptKeyword("USE"))
        return statement(Use{expectName()});
    if (acceptKeyword("RETURN"))
        return parseReturn();
    if (m_context.edition >= Edition::Sql2022 && acceptKeyword("THROW"))
        return parseThrow();
    return parseDataStatement(keyword);
}

StatementPtr StatementParser::parseDefinitionStatement(const std::string &keyword)
{
    static constexpr std::string_view refused[] = {
        "BACKUP",      "BULK",    "CHECKPOINT", "CLOSE",   "DBCC",     "DEALLOCATE", "DENY",
        "FETCH",       "GOTO",    "GRANT",      "KILL",    "MERGE",    "OPEN",       "REVOKE",
        "RECONFIGURE", "RESTORE", "REVERT",     "SETUSER", "SHUTDOWN", "WRITETEXT",  "READTEXT"};
    if (keyword == "CREATE")
        return m_parsers.definitions.parseCreate();
    if (keyword == "ALTER")
        return m_parsers.definitions.parseAlter();
    if ((keyword == "ENABLE" || keyword == "DISABLE") && ahead(1).keyword == "TRIGGER")
        return m_parsers.definitions.parseEnableTrigger();
    if (keyword == "DROP")
        return m_parsers.definitions.parseDrop();
    if (keyword == "TRUNCATE")
        return m_parsers.definitions.parseTruncate();
    if (std::find(std::begin(refused), std::end(refused), keyword) != std::end(refused))
        refuse(keyword);
    return nullptr;
}

/// WITH names AS (queries) before the statement that uses them.
StatementPtr StatementParser::parseWithStatement()
{
    std::vector<CommonTable> with = m_parsers.queries.parseWith();
    const std::string keyword = current().keyword;
    if (keyword != "SELECT" && keyword != "INSERT" && keyword != "UPDATE" && keyword != "DELETE" &&
        !isSymbol("("))
        failHere();
    auto result =
        isSymbol("(") ? statement(std::move(*m_parsers.queries.parseSelect())) : parseDataStatement(keyword);
    if (auto *select = std::get_if<Select>(&result->node)) {
        select->with = std::move(with);
    } else if (auto *insert = std::get_if<Insert>(&result->node)) {
        if (insert->query)
            insert->query->with = std::move(with);
    } else if (auto *update = std::get_if<Update>(&result->node)) {
        update->with = std::move(with);
    } else {
        std::get<Delete>(result->node).with = std::move(with);
    }
    return result;
}

StatementPtr StatementParser::parseBegin()
{
    expectKeyword("BEGIN");
    if (isKeyword("TRAN") || isKeyword("TRANSACTION"))
        return parseTransaction(Transaction::Kind::Begin);
    if (m_context.edition >= Edition::Sql2008 && acceptKeyword("TRY"))
        return parseTryCatch();
    if (isKeyword("DISTRIBUTED"))
        refuse("distributed transactions");
    return statement(parseBlock());
}

Block StatementParser::parseBlock()
{
    Block block;
    do
        block.statements.push_back(parseStatement());
    while (!acceptKeyword("END"));
    return block;
}

StatementPtr StatementParser::parseTryCatch()
{
    TryCatch node;
    node.body = parseBlock();
    expectKeyword("TRY");
    acceptSymbol(";");
    expectKeyword("BEGIN");
    expectKeyword("CATCH");
    while (acceptSymbol(";")) {
    }
    if (acceptKeyword("END")) // a handler may be empty
        expectKeyword("CATCH");
    else {
        node.handler = parseBlock();
        expectKeyword("CATCH");
    }
    return statement(std::move(node));
}

StatementPtr StatementParser::parseReturn()
{
    Return node;
    const Token &token = current();
    const bool value = token.kind != TokenKind::End && token.kind != TokenKind::Word && !isSymbol(";");
    const bool isValue = value || isKeyword("CASE") || isKeyword("NULL") || isName();
    if (isValue && !m_context.mayReturnValue)
        fail(EngineError(178, 15, 1, "A RETURN statement with a return value cannot be used in this context.",
                         ErrorEffect::EndsBatch),
             token.line);
    if (isValue)
        node.status = m_parsers.expressions.parseExpression();
    return statement(std::move(node));
}

StatementPtr StatementParser::parseThrow()
{
    Throw node;
    if (current().kind != TokenKind::Integer && current().kind != TokenKind::Variable)
        return statement(std::move(node));
    node.number = m_parsers.expressions.parsePrimary();
    expectSymbol(",");
    node.message = m_parsers.expressions.parsePrimary();
    expectSymbol(",");
    node.state = m_parsers.expressions.parsePrimary();
    return statement(std::move(node));
}

StatementPtr StatementParser::parseIf()
{
    expectKeyword("IF");
    If node;
    node.condition = m_parsers.expressions.parseCondition();
    node.then = parseStatement();
    if (acceptKeyword("ELSE"))
        node.otherwise = parseStatement();
    return statement(std::move(node));
}

StatementPtr StatementParser::parseWhile()
{
    expectKeyword("WHILE");
    While node;
    node.condition = m_parsers.expressions.parseCondition();
    const ScopedValue<int> inside(m_context.loops, m_context.loops + 1);
    node.body = parseStatement();
    return statement(std::move(node));
}

StatementPtr StatementParser::parseLoopExit(bool isBreak)
{
    if (m_context.loops == 0)
        fail(EngineError(isBreak ? 135 : 136, 15, 1,
                         "Cannot use a " + current().keyword +
                             " statement outside the scope of a WHILE statement.",
                         ErrorEffect::EndsBatch),
             current().line);
    advance();
    return isBreak ? statement(Break()) : statement(Continue());
}

StatementPtr StatementParser::parseDeclare()
{
    expectKeyword("DECLARE");
    Declare declare;
    do {
        Declare::Variable variable;
        const Token &token = current();
        if (isName() && (ahead(1).keyword == "CURSOR" || ahead(1).keyword == "INSENSITIVE"))
            refuse("cursors");
        if (token.kind != TokenKind::Variable)
            failHere();
        variable.name = token.value;
        advance();
        acceptKeyword("AS");
        if (isKeyword("CURSOR"))
            refuse("cursors");
        if (acceptKeyword("TABLE")) {
            variable.table = std::make_shared<CreateTable>();
            variable.table->name.parts = {variable.name};
            m_parsers.tables.parseTableElements(*variable.table);
        } else {
            variable.type = parseTypeName();
            if (m_context.edition == Edition::Sql2000 && isSymbol("="))
                fail(EngineError(139, 15, 1, "Cannot assign a default value to a local variable.",
                                 ErrorEffect::EndsBatch),
                     current().line);
            if (acceptSymbol("="))
                variable.initial = m_parsers.expressions.parseExpression();
            if (!isSystemType(variable.type.name) && !variable.initial)
                m_context.mayBeTables.insert(foldedName(variable.name));
        }
        const std::string folded = foldedName(variable.name);
        if (m_context.declared.contains(folded) || m_context.declaredTables.contains(folded))
            fail(Errors::variableAlreadyDeclared(variable.name), token.line);
        (variable.table ? m_context.declaredTables : m_context.declared).insert(folded);
        declare.variables.push_back(std::move(variable));
    } while (acceptSymbol(","));
    return statement(std::move(declare));
}

StatementPtr StatementParser::parseSet()
{
    expectKeyword("SET");
    if (current().kind != TokenKind::Variable)
        return parseSetOption();
    const std::string name = expectVariable(1);
    if (auto value = m_parsers.expressions.parseCompound(make(VariableReference{name})))
        return statement(SetVariable{name, std::move(value)});
    expectSymbol("=");
    return statement(SetVariable{name, m_parsers.expressions.parseExpression()});
}

StatementPtr StatementParser::parseSetOption()
{
    if (acceptKeyword("IDENTITY_INSERT")) {
        SetIdentityInsert node;
        node.table = parseObjectName();
        node.on = acceptKeyword("ON");
        if (!node.on)
            expectKeyword("OFF");
        return statement(std::move(node));
    }
    SetOption node;
    if (acceptKeyword("TRANSACTION")) {
        for (const char *word : {"ISOLATION", "LEVEL"})
            expectKeyword(word);
        node.options = {"TRANSACTION ISOLATION LEVEL"};
        while (current().kind == TokenKind::Word &&
               (isKeyword("READ") || isKeyword("UNCOMMITTED") || isKeyword("COMMITTED") ||
                isKeyword("REPEATABLE") || isKeyword("SNAPSHOT") || isKeyword("SERIALIZABLE")))
            node.value += (node.value.empty() ? "" : " ") + take().keyword;
        if (node.value.empty())
            failHere();
        return statement(std::move(node));
    }
    if (acceptKeyword("STATISTICS"))
        node.options.push_back("STATISTICS");
    do {
        if (current().kind != TokenKind::Word)
            failHere();
        node.options.push_back(take().keyword);
    } while (acceptSymbol(","));
    if (isKeyword("ON") || isKeyword("OFF"))
        node.value = take().keyword;
    else if (isName() && current().kind == TokenKind::Word)
        node.value = take().value;
    else
        node.expression = m_parsers.expressions.parseExpression();
    return statement(std::move(node));
}

StatementPtr StatementParser::parseRaiseError()
{
    expectKeyword("RAISERROR");
    RaiseError node;
    expectSymbol("(");
    node.message = m_parsers.expressions.parseExpression();
    expectSymbol(",");
    node.severity = m_parsers.expressions.parseExpression();
    expectSymbol(",");
    node.state = m_parsers.expressions.parseExpression();
    while (acceptSymbol(","))
        node.arguments.push_back(m_parsers.expressions.parseExpression());
    expectSymbol(")");
    if (acceptKeyword("WITH"))
        do {
            const std::string option = current().keyword;
            if (option != "NOWAIT" && option != "LOG" && option != "SETERROR")
                failHere();
            node.noWait = node.noWait || option == "NOWAIT";
            node.log = node.log || option == "LOG";
            node.setsError = node.setsError || option == "SETERROR";
            advance();
        } while (acceptSymbol(","));
    return statement(std::move(node));
}

StatementPtr StatementParser::parseWaitFor()
{
    expectKeyword("WAITFOR");
    WaitForDelay node;
    node.untilTime = acceptKeyword("TIME");
    if (!node.untilTime)
        expectKeyword("DELAY");
    node.delay = m_parsers.expressions.parseExpression();
    return statement(std::move(node));
}

} // namespace SampleServer
