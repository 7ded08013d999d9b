#pragma once

#include "Engine/Functions/MessageFormat.h"
#include "Engine/Run/QueryExecutor.h"

#include <string>

namespace SampleServer {

/// Runs statements on variables, messages, transactions and the current database.
class SessionExecutor
{
public:
    SessionExecutor(QueryExecutor &queries, ErrorReporter &errors)
        : m_session(queries.session())
        , m_errors(errors)
        , m_names(queries.names())
        , m_store(queries.store())
        , m_queries(queries)
    {
    }

    void run(const Ast::Declare &node);
    void run(const Ast::SetVariable &node);
    void run(const Ast::Print &node);
    void run(const Ast::RaiseError &node);
    void run(const Ast::Throw &node);
    void run(const Ast::WaitForDelay &node);
    void run(const Ast::Use &node);
    void run(const Ast::Transaction &node);

private:
    /// The value of an expression as int; 0 for NULL.
    std::int64_t numberOf(const Ast::Expression &expression);
    std::vector<MessageArgument> messageArguments(const Ast::RaiseError &node);
    void writeMessage(const Ast::RaiseError &node, const Bound::Expression &source, const Value &text,
                      ServerMessage &message);

    SessionContext &m_session;
    ErrorReporter &m_errors;
    NameLookup &m_names;
    TableStore &m_store;
    QueryExecutor &m_queries;
};

} // namespace SampleServer
