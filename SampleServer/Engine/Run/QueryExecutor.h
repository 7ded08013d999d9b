#pragma once

#include "Engine/Bind/Binder.h"
#include "Engine/Run/ErrorReporter.h"
#include "Engine/Run/NameLookup.h"

#include <functional>
#include <span>
#include <string>

namespace SampleServer {

/// Runs SELECT, and evaluates expressions for all other statements.
class QueryExecutor
{
public:
    using RowReceiver = std::function<void(std::span<const Value>)>;

    QueryExecutor(NameLookup &names, ErrorReporter &errors, SessionContext &session, TableStore &store)
        : m_names(names)
        , m_errors(errors)
        , m_session(session)
        , m_store(store)
    {
    }

    void run(const Ast::Select &node);

    Binder binder() { return Binder(m_session.evaluation, m_names, m_session.frame->variables); }
    /// Runs a query and passes its rows to `receive`; returns their number.
    std::uint64_t fetch(const Bound::Query &query, const RowReceiver &receive);
    /// Evaluates an expression that may need SQLite; constants are returned directly.
    Value evaluate(const Bound::Expression &expression);
    Value evaluate(const Ast::Expression &expression, const SqlType &type);
    /// Assigns a value of the type to a variable. Throws EngineError 137 if it is not declared.
    void assign(const std::string &variable, Value value, const SqlType &type);

    NameLookup &names() { return m_names; }
    SessionContext &session() { return m_session; }
    TableStore &store() { return m_store; }

private:
    void runAssignments(const Ast::Select &node);
    void selectInto(const Ast::Select &node);
    std::optional<std::uint64_t> fetchGenerated(const Bound::Query &query, std::uint64_t limit,
                                                const RowReceiver &receive);

    NameLookup &m_names;
    ErrorReporter &m_errors;
    SessionContext &m_session;
    TableStore &m_store;
};

} // namespace SampleServer
