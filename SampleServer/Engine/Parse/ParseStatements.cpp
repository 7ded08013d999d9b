#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parser.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"

namespace SampleServer {

using namespace Ast;

StatementPtr Parser::parseStatement()
{
    const NestingGuard guard(*this);
    while (acceptSymbol(";")) {
    }
    const int line = current().line;
    m_statementLine = line;
    m_setOperators = 0;
    const bool isFirst = m_at == 0;
    const std::string keyword = current().keyword;
    StatementPtr result;
    if (isSymbol("(") && atSubquery())
        result = statement(std::move(*parseSelect()));
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

StatementPtr Parser::parseControlStatement(const std::string &keyword)
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
        ++m_at;
        return parseExecute();
    }
    if (keyword == "COMMIT" || keyword == "ROLLBACK" || keyword == "SAVE") {
        ++m_at;
        return parseTransaction(keyword == "COMMIT"     ? Transaction::Kind::Commit
                                : keyword == "ROLLBACK" ? Transaction::Kind::Rollback
                                                        : Transaction::Kind::Save);
    }
    if (keyword == "BREAK" || keyword == "CONTINUE")
        return parseLoopExit(keyword == "BREAK");
    if (acceptKeyword("PRINT")) {
        const ScopedValue<bool> scalar(m_allowsSubqueries, false);
        return statement(Print{parseExpression()});
    }
    if (acceptKeyword("USE"))
        return statement(Use{expectName()});
    if (acceptKeyword("RETURN"))
        return parseReturn();
    if (m_edition >= Edition::Sql2022 && acceptKeyword("THROW"))
        return parseThrow();
    return parseDataStatement(keyword);
}

StatementPtr Parser::parseDataStatement(const std::string &keyword)
{
    if (keyword == "SELECT")
        return statement(std::move(*parseSelect()));
    if (keyword == "WITH")
        return parseWithStatement();
    if (keyword == "INSERT")
        return parseInsert();
    if (keyword == "UPDATE")
        return parseUpdate();
    if (keyword == "DELETE")
        return parseDelete();
    if (keyword == "UPDATETEXT")
        return parseUpdateText();
    return parseDefinitionStatement(keyword);
}

StatementPtr Parser::parseDefinitionStatement(const std::string &keyword)
{
    static constexpr std::string_view refused[] = {
        "BACKUP",      "BULK",    "CHECKPOINT", "CLOSE",   "DBCC",     "DEALLOCATE", "DENY",
        "FETCH",       "GOTO",    "GRANT",      "KILL",    "MERGE",    "OPEN",       "REVOKE",
        "RECONFIGURE", "RESTORE", "REVERT",     "SETUSER", "SHUTDOWN", "WRITETEXT",  "READTEXT"};
    if (keyword == "CREATE")
        return parseCreate();
    if (keyword == "ALTER")
        return parseAlter();
    if ((keyword == "ENABLE" || keyword == "DISABLE") && ahead(1).keyword == "TRIGGER")
        return parseEnableTrigger();
    if (keyword == "DROP")
        return parseDrop();
    if (keyword == "TRUNCATE")
        return parseTruncate();
    if (std::find(std::begin(refused), std::end(refused), keyword) != std::end(refused))
        refuse(keyword);
    return nullptr;
}

StatementPtr Parser::parseBegin()
{
    expectKeyword("BEGIN");
    if (isKeyword("TRAN") || isKeyword("TRANSACTION"))
        return parseTransaction(Transaction::Kind::Begin);
    if (m_edition >= Edition::Sql2008 && acceptKeyword("TRY"))
        return parseTryCatch();
    if (isKeyword("DISTRIBUTED"))
        refuse("distributed transactions");
    return statement(parseBlock());
}

Block Parser::parseBlock()
{
    Block block;
    do
        block.statements.push_back(parseStatement());
    while (!acceptKeyword("END"));
    return block;
}

StatementPtr Parser::parseTryCatch()
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

StatementPtr Parser::parseReturn()
{
    Return node;
    const Token &token = current();
    const bool value = token.kind != TokenKind::End && token.kind != TokenKind::Word && !isSymbol(";");
    const bool isValue = value || isKeyword("CASE") || isKeyword("NULL") || isName();
    if (isValue && !m_mayReturnValue)
        fail(EngineError(178, 15, 1, "A RETURN statement with a return value cannot be used in this context.",
                         ErrorEffect::EndsBatch),
             token.line);
    if (isValue)
        node.status = parseExpression();
    return statement(std::move(node));
}

StatementPtr Parser::parseThrow()
{
    Throw node;
    if (current().kind != TokenKind::Integer && current().kind != TokenKind::Variable)
        return statement(std::move(node));
    node.number = parsePrimary();
    expectSymbol(",");
    node.message = parsePrimary();
    expectSymbol(",");
    node.state = parsePrimary();
    return statement(std::move(node));
}

StatementPtr Parser::parseIf()
{
    expectKeyword("IF");
    If node;
    node.condition = parseCondition();
    node.then = parseStatement();
    if (acceptKeyword("ELSE"))
        node.otherwise = parseStatement();
    return statement(std::move(node));
}

StatementPtr Parser::parseWhile()
{
    expectKeyword("WHILE");
    While node;
    node.condition = parseCondition();
    const ScopedValue<int> inside(m_loops, m_loops + 1);
    node.body = parseStatement();
    return statement(std::move(node));
}

StatementPtr Parser::parseLoopExit(bool isBreak)
{
    if (m_loops == 0)
        fail(EngineError(isBreak ? 135 : 136, 15, 1,
                         "Cannot use a " + current().keyword +
                             " statement outside the scope of a WHILE statement.",
                         ErrorEffect::EndsBatch),
             current().line);
    ++m_at;
    return isBreak ? statement(Break()) : statement(Continue());
}

StatementPtr Parser::parseDeclare()
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
        ++m_at;
        acceptKeyword("AS");
        if (isKeyword("CURSOR"))
            refuse("cursors");
        if (acceptKeyword("TABLE")) {
            variable.table = std::make_shared<CreateTable>();
            variable.table->name.parts = {variable.name};
            parseTableElements(*variable.table);
        } else {
            variable.type = parseTypeName();
            if (m_edition == Edition::Sql2000 && isSymbol("="))
                fail(EngineError(139, 15, 1, "Cannot assign a default value to a local variable.",
                                 ErrorEffect::EndsBatch),
                     current().line);
            if (acceptSymbol("="))
                variable.initial = parseExpression();
            if (!isSystemType(variable.type.name) && !variable.initial)
                m_mayBeTables.insert(foldedName(variable.name));
        }
        const std::string folded = foldedName(variable.name);
        if (m_declared.contains(folded) || m_declaredTables.contains(folded))
            fail(Errors::variableAlreadyDeclared(variable.name), token.line);
        (variable.table ? m_declaredTables : m_declared).insert(folded);
        declare.variables.push_back(std::move(variable));
    } while (acceptSymbol(","));
    return statement(std::move(declare));
}

StatementPtr Parser::parseSet()
{
    expectKeyword("SET");
    if (current().kind != TokenKind::Variable)
        return parseSetOption();
    const std::string name = expectVariable(1);
    if (auto value = parseCompound(make(VariableReference{name})))
        return statement(SetVariable{name, std::move(value)});
    expectSymbol("=");
    return statement(SetVariable{name, parseExpression()});
}

/// A compound assignment such as += with its operand: the new value. Null when there is none here.
ExpressionPtr Parser::parseCompound(ExpressionPtr target)
{
    static constexpr std::pair<std::string_view, ArithmeticOperator> arithmetic[] = {
        {"+=", ArithmeticOperator::Add},
        {"-=", ArithmeticOperator::Subtract},
        {"*=", ArithmeticOperator::Multiply},
        {"/=", ArithmeticOperator::Divide},
        {"%=", ArithmeticOperator::Modulo}};
    static constexpr std::pair<std::string_view, BitOperator> bits[] = {
        {"&=", BitOperator::And}, {"|=", BitOperator::Or}, {"^=", BitOperator::Xor}};
    if (m_edition < Edition::Sql2008)
        return nullptr;
    for (const auto &[symbol, op] : arithmetic)
        if (acceptSymbol(symbol))
            return make(Arithmetic{op, std::move(target), parseExpression()});
    for (const auto &[symbol, op] : bits)
        if (acceptSymbol(symbol))
            return make(Bitwise{op, std::move(target), parseExpression()});
    return nullptr;
}

StatementPtr Parser::parseSetOption()
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
            node.value += (node.value.empty() ? "" : " ") + m_tokens[m_at++].keyword;
        if (node.value.empty())
            failHere();
        return statement(std::move(node));
    }
    if (acceptKeyword("STATISTICS"))
        node.options.push_back("STATISTICS");
    do {
        if (current().kind != TokenKind::Word)
            failHere();
        node.options.push_back(m_tokens[m_at++].keyword);
    } while (acceptSymbol(","));
    if (isKeyword("ON") || isKeyword("OFF"))
        node.value = m_tokens[m_at++].keyword;
    else if (isName() && current().kind == TokenKind::Word)
        node.value = m_tokens[m_at++].value;
    else
        node.expression = parseExpression();
    return statement(std::move(node));
}

StatementPtr Parser::parseRaiseError()
{
    expectKeyword("RAISERROR");
    RaiseError node;
    expectSymbol("(");
    node.message = parseExpression();
    expectSymbol(",");
    node.severity = parseExpression();
    expectSymbol(",");
    node.state = parseExpression();
    while (acceptSymbol(","))
        node.arguments.push_back(parseExpression());
    expectSymbol(")");
    if (acceptKeyword("WITH"))
        do {
            const std::string option = current().keyword;
            if (option != "NOWAIT" && option != "LOG" && option != "SETERROR")
                failHere();
            node.noWait = node.noWait || option == "NOWAIT";
            node.log = node.log || option == "LOG";
            node.setsError = node.setsError || option == "SETERROR";
            ++m_at;
        } while (acceptSymbol(","));
    return statement(std::move(node));
}

StatementPtr Parser::parseWaitFor()
{
    expectKeyword("WAITFOR");
    WaitForDelay node;
    node.untilTime = acceptKeyword("TIME");
    if (!node.untilTime)
        expectKeyword("DELAY");
    node.delay = parseExpression();
    return statement(std::move(node));
}

StatementPtr Parser::parseTransaction(Transaction::Kind kind)
{
    const bool named = acceptKeyword("TRAN") || acceptKeyword("TRANSACTION");
    Transaction node{kind, {}};
    if (!named && isKeyword("WORK"))
        ++m_at;
    else if (named && isName())
        node.name = expectName();
    else if (named && current().kind == TokenKind::Variable)
        node.name = expectVariable();
    if (kind == Transaction::Kind::Save && node.name.empty())
        failHere();
    return statement(std::move(node));
}

StatementPtr Parser::parseExecute()
{
    Execute node;
    if (acceptSymbol("(")) {
        node.text = parseExpression();
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
        node.procedure = parseObjectName();
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
            m_at += 2;
        }
        if (isName() && current().kind == TokenKind::Word) // a bare word is text, as in EXEC sp_help t
            argument.value = make(Literal{{TypeId::NVarChar, 128, 0, 0}, Value(m_tokens[m_at++].value)});
        else if (current().kind == TokenKind::Variable &&
                 m_declaredTables.contains(foldedName(current().value)))
            argument.value = make(VariableReference{m_tokens[m_at++].value});
        else if (!acceptKeyword("DEFAULT"))
            argument.value = parseExpression();
        argument.output = acceptKeyword("OUTPUT") || acceptKeyword("OUT");
        node.arguments.push_back(std::move(argument));
    } while (acceptSymbol(","));
    return statement(std::move(node));
}

} // namespace SampleServer
