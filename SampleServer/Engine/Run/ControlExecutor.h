#pragma once

#include "Engine/Run/ChangeExecutor.h"
#include "Engine/Run/DefinitionExecutor.h"
#include "Engine/Run/ModuleExecutor.h"
#include "Engine/Run/OptionExecutor.h"
#include "Engine/Run/SessionExecutor.h"

namespace SampleServer {

/// Runs texts and statements: control flow itself, other statements with their executors.
class ControlExecutor : public StatementRunner
{
public:
    ControlExecutor(QueryExecutor &queries, TriggerRunner &triggers, ModuleExecutor &modules,
                    ErrorReporter &errors)
        : m_session(queries.session())
        , m_errors(errors)
        , m_names(queries.names())
        , m_queries(queries)
        , m_modules(modules)
        , m_changes(queries, triggers, modules)
        , m_definitions(queries, triggers)
        , m_sessionStatements(queries, errors)
        , m_optionStatements(queries)
    {
    }

    void runText(std::string_view sql, const ParserOptions &options) override;
    Flow runStatements(const std::vector<Ast::StatementPtr> &statements) override;

private:
    Flow runStatement(const Ast::Statement &statement);
    Flow runGuarded(const Ast::Statement &statement);
    Flow runLeaf(const Ast::Statement &statement);
    /// Passes a statement to the executor with a matching run().
    Flow dispatch(const Ast::Statement &statement);
    void startClock();
    bool holds(const Ast::Expression &condition);

    Flow run(const Ast::If &node);
    Flow run(const Ast::While &node);
    Flow run(const Ast::Block &node) { return runStatements(node.statements); }
    Flow run(const Ast::Break &) { return Flow::Break; }
    Flow run(const Ast::Continue &) { return Flow::Continue; }
    Flow run(const Ast::Return &node);
    Flow run(const Ast::TryCatch &node);

    SessionContext &m_session;
    ErrorReporter &m_errors;
    NameLookup &m_names;
    QueryExecutor &m_queries;
    ModuleExecutor &m_modules;
    ChangeExecutor m_changes;
    DefinitionExecutor m_definitions;
    SessionExecutor m_sessionStatements;
    OptionExecutor m_optionStatements;
};

} // namespace SampleServer
