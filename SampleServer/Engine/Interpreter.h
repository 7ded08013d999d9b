#pragma once

#include "Engine/AstStatements.h"
#include "Engine/Binder.h"
#include "Engine/CollectingSink.h"
#include "Engine/EngineError.h"
#include "Engine/Frame.h"
#include "Engine/Parser.h"
#include "Engine/ServerState.h"
#include "Engine/Session.h"
#include "Engine/SessionOptions.h"
#include "Engine/Transactions.h"
#include "Engine/Variables.h"

#include <memory>
#include <string>
#include <string_view>

namespace SampleServer {

class InsertRun;

/// Thrown when a statement has to be bound again, because the tables it was bound to are not there any more.
struct DefinitionsChanged
{
};

/// Runs batches statement by statement: one session's state and everything it does.
class Interpreter : private TableResolver
{
public:
    /// Throws EngineError 4060 when there is no such database.
    Interpreter(std::shared_ptr<Server> server, ServerState &state, std::string_view login,
                std::string_view database);
    ~Interpreter() override;

    /// The parameters are variables that the batch finds declared; afterwards each holds its last value.
    void runBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink);

    const std::string &database() const { return m_context.database; }
    EvaluationContext &context() { return m_context; }

private:
    using RowReceiver = std::function<void(std::span<const Value>)>;
    /// Where a statement leaves the flow of control.
    enum class Flow { Next, Break, Continue, Return };

    // Batches and control flow (Interpreter.cpp)
    void runText(std::string_view sql, const ParserOptions &options);
    Flow runStatements(const std::vector<Ast::StatementPtr> &statements);
    Flow runStatement(const Ast::Statement &statement);
    Flow runGuarded(const Ast::Statement &statement);
    Flow runLeaf(const Ast::Statement &statement);
    void locate(EngineError &error, int line) const;
    void report(EngineError &error, int line, bool changesRows = false);
    void reportSyntax(EngineError &error);
    bool rollsBack(const EngineError &error) const;
    bool endsBatch(const EngineError &error) const;
    bool endsAll(const EngineError &error) const;
    bool catches(int tryDepth, const EngineError &error) const;
    bool isCaught(const EngineError &error) const;
    void endDoomedTransaction();
    void checkAttention();

    Flow run(const Ast::If &node);
    Flow run(const Ast::While &node);
    Flow run(const Ast::Block &node);
    Flow run(const Ast::Break &) { return Flow::Break; }
    Flow run(const Ast::Continue &) { return Flow::Continue; }
    Flow run(const Ast::Return &node);
    Flow run(const Ast::TryCatch &node);
    Flow run(const Ast::Throw &node);

    // Session statements (InterpreterSession.cpp)
    Flow run(const Ast::Declare &node);
    Flow run(const Ast::SetVariable &node);
    Flow run(const Ast::SetOption &node);
    Flow run(const Ast::SetIdentityInsert &node);
    Flow run(const Ast::Print &node);
    Flow run(const Ast::RaiseError &node);
    Flow run(const Ast::WaitForDelay &node);
    Flow run(const Ast::Use &node);
    Flow run(const Ast::Transaction &node);
    Flow run(const Ast::Execute &node);
    void applyOption(const std::string &option, const std::string &value, const Value &number);
    void useDatabase(const std::string &name);
    void assign(const std::string &variable, Value value, const SqlType &type);
    void executeSql(const Ast::Execute &node);
    void runNested(std::string_view sql, Variables &variables);
    /// Runs `work` in a frame of its own, within the nesting limit; its temporary tables go with it.
    void inFrame(Frame &frame, const std::function<void()> &work);
    void dropTables(TableMap &tables, bool variablesOnly);
    std::vector<CollectingSink::Row> collectExecuted(const Ast::Execute &node);
    std::uint64_t insertCollected(const std::vector<CollectingSink::Row> &rows, const Table &table,
                                  InsertRun &insert, const std::vector<std::size_t> &targets);

    // Queries (InterpreterSelect.cpp)
    Flow run(const Ast::Select &node);
    void runAssignments(const Ast::Select &node);
    void selectInto(const Ast::Select &node);
    /// Runs a query and hands on its rows; returns how many there were.
    std::uint64_t fetch(const Bound::Query &query, const RowReceiver &receive);
    std::optional<std::uint64_t> fetchGenerated(const Bound::Query &query, std::uint64_t limit,
                                                const RowReceiver &receive);
    /// The value of an expression that may need SQLite; constants come back at once.
    Value evaluate(const Bound::Expression &expression);
    Value evaluate(const Ast::Expression &expression, const SqlType &type);
    bool holds(const Ast::Expression &condition);

    // Changes (InterpreterInsert.cpp, InterpreterUpdate.cpp)
    Flow run(const Ast::Insert &node);
    Flow run(const Ast::Update &node);
    Flow run(const Ast::Delete &node);
    Flow run(const Ast::TruncateTable &node);
    std::uint64_t insertFrom(const Bound::Query &query, const Table &table, InsertRun &insert,
                             const std::vector<std::size_t> &targets, bool readsItself);
    void endChange(std::uint64_t count, std::uint16_t command);

    // Definitions (InterpreterDefinitions.cpp)
    Flow run(const Ast::CreateTable &node);
    Flow run(const Ast::DropTable &node);
    Flow run(const Ast::CreateDatabase &node);
    Flow run(const Ast::DropDatabase &node);
    /// The place of a new table: its database (null for a temporary one); throws 2714 when the name is taken.
    DatabasePtr placeOfNewTable(const Ast::ObjectName &name);
    Bound::TableScan createTable(Table definition, const DatabasePtr &database);
    Table buildTable(const Ast::CreateTable &node);
    TablePtr findTemporary(const std::string &name) const;
    void eraseTemporary(const Table &table);
    SqlType columnType(const Ast::ColumnDefinition &definition, int number) const;
    void typeComputedColumns(Table &table);

    // Names and locks (InterpreterNames.cpp)
    Bound::TableScan findTable(const Ast::ObjectName &name) override;
    Bound::TableScan findOrNull(const Ast::ObjectName &name);
    void willRead(const Bound::TableScan &scan, bool readUncommitted) override;
    void willWrite(const Bound::TableScan &scan);
    /// Waits for the locks of everything that was bound since the last call. Throws DefinitionsChanged when,
    /// by the time they were granted, a name had come to mean another table.
    void lockUses();
    DatabasePtr findDatabase(const std::string &name) const;
    std::string fullName(const Table &table) const;
    void provideNames();

    friend class RowWriter;
    friend class InsertRun;
    friend class RowSearch;

    Binder binder() { return Binder(m_context, *this, m_frame->variables); }

    const std::shared_ptr<Server> m_server;
    ServerState &m_state;
    EvaluationContext m_context;
    SessionOptions m_options;
    Frame m_batch; ///< its temporary tables are the session's
    Frame *m_frame = &m_batch;
    std::vector<int> m_tries; ///< how deeply nested the TRY blocks around the current statement stand
    SqliteConnection m_connection;
    Transactions m_transactions;
    DatabasePtr m_database;
    ResultSink *m_sink = nullptr; ///< set while a batch runs
    int m_line = 1;               ///< of the statement that runs
    std::vector<TableUse> m_uses; ///< what the statement being bound will do with which tables
};

} // namespace SampleServer
