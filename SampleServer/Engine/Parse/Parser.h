#pragma once

#include "Engine/Edition.h"
#include "Engine/EngineError.h"
#include "Engine/Parse/AstStatements.h"
#include "Engine/Parse/Lexer.h"

#include <algorithm>
#include <initializer_list>
#include <set>
#include <string_view>
#include <vector>

namespace SampleServer {

struct ParserOptions
{
    bool quotedIdentifiers = true;
    std::vector<std::string>
        declaredVariables; ///< known before the batch starts (parameters of sp_executesql)
    Edition edition = Edition::Sql2022;
};

/// Reads a batch into its statements. Throws EngineError (102, 137, 156 ...) with the line it happened on.
std::vector<Ast::StatementPtr> parseBatch(std::string_view sql, const ParserOptions &options);

/// A recursive descent parser over the tokens of one batch.
class Parser
{
public:
    Parser(std::string_view sql, const ParserOptions &options);

    std::vector<Ast::StatementPtr> parseStatements();

private:
    // Tokens
    const Token &current() const { return m_tokens[m_at]; }
    const Token &ahead(std::size_t count) const
    {
        return m_tokens[std::min(m_at + count, m_tokens.size() - 1)];
    }
    bool isKeyword(std::string_view keyword) const { return current().keyword == keyword; }
    bool isSymbol(std::string_view symbol) const;
    bool isName() const;
    bool acceptKeyword(std::string_view keyword);
    bool acceptSymbol(std::string_view symbol);
    void expectKeyword(std::string_view keyword);
    void expectSymbol(std::string_view symbol);
    std::string expectName();
    std::string expectVariable(int errorState = 2);
    [[noreturn]] void failHere() const;
    /// Fails at the current token unless the server is of that edition or a later one.
    void require(Edition edition) const;
    [[noreturn]] void fail(EngineError error, int line) const;
    [[noreturn]] void refuse(std::string_view construct) const;
    Ast::ObjectName parseObjectName();
    Ast::ObjectName parseTableName();
    Ast::TypeName parseTypeName();

    // Statements
    Ast::StatementPtr parseStatement();
    Ast::StatementPtr parseLoopExit(bool isBreak);
    Ast::ExpressionPtr parseCompound(Ast::ExpressionPtr target);
    Ast::StatementPtr parseControlStatement(const std::string &keyword);
    Ast::StatementPtr parseDataStatement(const std::string &keyword);
    Ast::StatementPtr parseDefinitionStatement(const std::string &keyword);
    Ast::StatementPtr parseBegin();
    Ast::StatementPtr parseTryCatch();
    Ast::Block parseBlock();
    Ast::StatementPtr parseReturn();
    Ast::StatementPtr parseThrow();
    Ast::StatementPtr parseIf();
    Ast::StatementPtr parseWhile();
    Ast::StatementPtr parseDeclare();
    Ast::StatementPtr parseSet();
    Ast::StatementPtr parseSetOption();
    Ast::StatementPtr parseRaiseError();
    Ast::StatementPtr parseWaitFor();
    Ast::StatementPtr parseTransaction(Ast::Transaction::Kind kind);
    Ast::StatementPtr parseExecute();
    Ast::StatementPtr parseInsert();
    Ast::StatementPtr parseUpdate();
    Ast::StatementPtr parseUpdateText();
    Ast::StatementPtr parseDelete();
    // Definitions
    Ast::StatementPtr parseCreate();
    Ast::StatementPtr parseCreateTable();
    Ast::StatementPtr parseCreateDatabase();
    Ast::StatementPtr parseCreateSchema();
    Ast::StatementPtr parseCreateType();
    Ast::StatementPtr parseCreateIndex();
    Ast::StatementPtr parseAlter();
    Ast::StatementPtr parseAlterTable();
    Ast::StatementPtr parseAlterIndex();
    Ast::StatementPtr parseAlterDatabase();
    Ast::StatementPtr parseEnableTrigger();
    Ast::StatementPtr parseDrop();
    Ast::StatementPtr parseDropIndex(bool ifExists);
    Ast::StatementPtr parseTruncate();
    void parseTableElements(Ast::CreateTable &table);
    void parseTableElement(Ast::CreateTable &table);
    void parseTableIndex(Ast::CreateTable &table);
    void parseTableConstraint(Ast::CreateTable &table);
    void parseColumnDefinition(Ast::CreateTable &table);
    bool parseColumnProperty(Ast::ColumnDefinition &column);
    bool parseColumnConstraint(Ast::CreateTable &table, const std::string &column, std::string &name);
    void parseKey(Ast::Constraint &constraint);
    void parseCheck(Ast::Constraint &constraint);
    void parseReference(Ast::Constraint &constraint);
    ReferentialAction parseReferentialAction();
    void parseTableAdditions(Ast::AlterTable &node);
    void parseAlterColumn(Ast::AlterTable &node);
    void parseTableDrops(Ast::AlterTable &node);
    void parseEnabling(Ast::AlterTable &node);
    void parseIndexTail(Ast::CreateIndex &index);
    Ast::IndexOptions parseIndexOptions();
    std::vector<Ast::KeyColumn> parseKeyColumns();
    std::optional<bool> acceptClustering();
    bool atTableConstraint() const;
    void skipStorage();
    void skipDatabaseOptions();
    void skipParentheses();
    std::int64_t parseSignedInteger();
    DefinedExpression keepExpression(Ast::ExpressionPtr (Parser::*parse)());

    // Modules
    bool atModule() const;
    Ast::StatementPtr parseModule(std::size_t start, bool create, bool alter);
    void parseModuleOptions(Ast::ModuleDefinition &module);
    void parseParameters(Ast::ModuleDefinition &module);
    void parseViewRest(Ast::ModuleDefinition &module);
    void parseProcedureRest(Ast::ModuleDefinition &module);
    void parseFunctionRest(Ast::ModuleDefinition &module);
    void parseInlineBody(Ast::ModuleDefinition &module);
    void parseTriggerRest(Ast::ModuleDefinition &module);
    bool closesBeforeSetOperator() const;

    // Queries
    Ast::SelectPtr parseSelect();
    std::vector<Ast::CommonTable> parseWith();
    Ast::StatementPtr parseWithStatement();
    Ast::ForXml parseForXml();
    std::vector<Ast::OrderItem> parseOrderItems();
    Ast::Window parseWindow();
    std::string parseFrame();
    Ast::ExpressionPtr parseXmlMethod(Ast::ExpressionPtr operand);
    std::unique_ptr<Ast::Query> parseQuery();
    std::unique_ptr<Ast::Query> parseIntersection();
    std::unique_ptr<Ast::Query> parseQueryTerm();
    void parseSpecification(Ast::QuerySpecification &query);
    std::optional<Ast::Top> parseTop();
    Ast::SelectItem parseSelectItem();
    bool atStar() const;
    std::string parseAlias();
    std::vector<Ast::TableSourcePtr> parseFrom();
    Ast::TableSourcePtr parseJoinedTable();
    Ast::TableSourcePtr parseJoin(Ast::JoinKind kind, Ast::TableSourcePtr left);
    Ast::TableSourcePtr parseNamedTable();
    void countSetOperator();
    void requireNoInto(const Ast::Query &query) const;
    Ast::TableSourcePtr parseTable();
    Ast::TableSourcePtr parseParenthesizedTable();
    std::optional<Ast::JoinKind> acceptJoin();
    void parseTableAlias(Ast::TableSource &table);
    bool parseTableHints();
    bool parseHintList();
    void parseOrderBy(Ast::Select &select);
    void parseCompute(Ast::Select &select);
    std::optional<int> parseOption();
    std::vector<std::vector<Ast::ExpressionPtr>> parseRows(bool allowDefault);

    // Expressions
    Ast::ExpressionPtr parseExpression();
    Ast::ExpressionPtr parseCondition();
    Ast::ExpressionPtr parseOr();
    Ast::ExpressionPtr parseAnd();
    Ast::ExpressionPtr parseNot();
    Ast::ExpressionPtr parsePredicate();
    Ast::ExpressionPtr parseComparison(Ast::ExpressionPtr left, Ast::ComparisonOperator op);
    Ast::ExpressionPtr parseNegatablePredicate(Ast::ExpressionPtr left, bool negated);
    Ast::ExpressionPtr parseAdditive();
    Ast::ExpressionPtr parseMultiplicative();
    Ast::ExpressionPtr parseUnary();
    Ast::ExpressionPtr parsePrimary();
    Ast::ExpressionPtr parseWordExpression();
    Ast::ExpressionPtr parseCase();
    Ast::ExpressionPtr parseCast(bool isTry);
    Ast::ExpressionPtr parseConvert(bool isTry);
    Ast::ExpressionPtr parseFunction(Ast::ObjectName name);
    Ast::ExpressionPtr parseLiteral();
    Ast::SelectPtr parseParenthesizedSelect();
    bool atSubquery() const;
    std::optional<Ast::ComparisonOperator> acceptComparison();
    Ast::ExpressionPtr requireValue(Ast::ExpressionPtr expression) const;
    Ast::ExpressionPtr requireCondition(Ast::ExpressionPtr expression) const;

    template <typename Node>
    Ast::ExpressionPtr make(Node node, std::initializer_list<const Ast::Expression *> children = {}) const;
    template <typename Node>
    Ast::StatementPtr statement(Node node) const;

    const std::string_view m_sql;
    std::vector<Token> m_tokens;
    const Edition m_edition;
    std::size_t m_at = 0;
    int m_nesting = 0;
    int m_setOperators = 0; ///< of the statement
    int m_statementLine = 1;
    int m_loops = 0;                        ///< how many WHILE loops are around
    std::string m_module;                   ///< the one that is defined here, for errors
    bool m_allowsColumns = true;            ///< not in DEFAULT
    bool m_allowsSubqueries = true;         ///< not in constraints and PRINT
    std::set<std::string> m_declared;       ///< folded names of the variables declared so far
    std::set<std::string> m_declaredTables; ///< likewise of table variables
    std::set<std::string> m_mayBeTables;    ///< declared with what may be a table type
    bool m_mayReturnValue = false;          ///< RETURN takes a value here

    friend class NestingGuard;
};

/// Counts how deeply the parser is nested and fails before the stack would overflow (error 191).
class NestingGuard
{
public:
    explicit NestingGuard(Parser &parser);
    ~NestingGuard() { --m_parser.m_nesting; }
    NestingGuard(const NestingGuard &) = delete;
    NestingGuard &operator=(const NestingGuard &) = delete;

private:
    Parser &m_parser;
};

template <typename Node>
Ast::ExpressionPtr Parser::make(Node node, std::initializer_list<const Ast::Expression *> children) const
{
    auto expression = std::make_unique<Ast::Expression>();
    expression->line = current().line;
    for (const Ast::Expression *child : children)
        expression->depth = std::max(expression->depth, child ? child->depth + 1 : 0);
    if (expression->depth > 900)
        fail(
            EngineError(
                191, 15, 1,
                "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into "
                "smaller queries.",
                ErrorEffect::EndsBatch),
            current().line);
    expression->node = std::move(node);
    return expression;
}

template <typename Node>
Ast::StatementPtr Parser::statement(Node node) const
{
    auto result = std::make_unique<Ast::Statement>();
    result->line = m_statementLine;
    result->node = std::move(node);
    return result;
}

} // namespace SampleServer
