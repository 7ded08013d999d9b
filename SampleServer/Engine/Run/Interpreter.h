#pragma once

#include "Engine/Bind/Binder.h"
#include "Engine/EngineError.h"
#include "Engine/Parse/AstStatements.h"
#include "Engine/Parse/Parser.h"
#include "Engine/Run/CollectingSink.h"
#include "Engine/Run/Frame.h"
#include "Engine/Run/SessionOptions.h"
#include "Engine/Run/Transactions.h"
#include "Engine/Run/Variables.h"
#include "Engine/ServerState.h"
#include "Engine/Session.h"

#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace SampleServer {

class InsertRun;
class TableBuilder;
class TableChange;

/// Thrown when a statement has to be bound again, because the tables it was bound to are not there any more.
struct DefinitionsChanged
{
};

/// Runs batches statement by statement: one session's state and everything it does.
class Interpreter : private NameResolver
{
public:
    /// Throws EngineError 4060 when there is no such database.
    Interpreter(std::shared_ptr<Server> server, ServerState &state, std::string_view login,
                std::string_view database);
    ~Interpreter() override;

    /// The parameters are variables that the batch finds declared; afterwards each holds its last value.
    void runBatch(std::string_view sql, std::span<BatchParameter> parameters, ResultSink &sink);
    /// Runs a procedure by name and tells its status and output through the sink.
    void callProcedure(const std::string &name, std::span<const ProcedureArgument> arguments,
                       ResultSink &sink);

    const std::string &database() const { return m_context.database; }
    EvaluationContext &context() { return m_context; }

private:
    using RowReceiver = std::function<void(std::span<const Value>)>;
    /// Where a statement leaves the flow of control.
    enum class Flow { Next, Break, Continue, Return };

    // Batches and control flow (Interpreter.cpp)
    void runRequest(ResultSink &sink, std::string_view text, const std::function<void()> &work);
    void describeSession(std::string_view text, bool isRunning);
    void runText(std::string_view sql, const ParserOptions &options);
    Flow runStatements(const std::vector<Ast::StatementPtr> &statements);
    Flow runStatement(const Ast::Statement &statement);
    Flow runGuarded(const Ast::Statement &statement);
    Flow runLeaf(const Ast::Statement &statement);
    void reportLackOfMemory();
    void endWithoutCount();
    void endStatement();
    void checkAttention();

    Flow run(const Ast::If &node);
    Flow run(const Ast::While &node);
    Flow run(const Ast::Block &node);
    Flow run(const Ast::Break &) { return Flow::Break; }
    Flow run(const Ast::Continue &) { return Flow::Continue; }
    Flow run(const Ast::Return &node);

    // Errors (InterpreterErrors.cpp)
    void locate(EngineError &error, int line) const;
    void report(EngineError &error, int line, bool changesRows = false);
    void reportSyntax(EngineError &error);
    bool rollsBack(const EngineError &error) const;
    bool endsBatch(const EngineError &error) const;
    bool endsAll(const EngineError &error) const;
    bool catches(int tryDepth, const EngineError &error) const;
    bool isCaught(const EngineError &error) const;
    void endDoomedTransaction();
    Flow run(const Ast::TryCatch &node);
    Flow run(const Ast::Throw &node);
    Flow run(const Ast::RaiseError &node);

    // Session statements (InterpreterSession.cpp, InterpreterOptions.cpp)
    Flow run(const Ast::Declare &node);
    Flow run(const Ast::SetVariable &node);
    Flow run(const Ast::SetOption &node);
    Flow run(const Ast::SetIdentityInsert &node);
    Flow run(const Ast::Print &node);
    Flow run(const Ast::WaitForDelay &node);
    Flow run(const Ast::Use &node);
    Flow run(const Ast::Transaction &node);
    void applyOption(const std::string &option, const std::string &value, const Value &number);
    void useDatabase(const std::string &name);
    void assign(const std::string &variable, Value value, const SqlType &type);
    void declareTable(const std::string &name, Table definition);

    // Dynamic texts and procedures (InterpreterExecute.cpp, InterpreterCalls.cpp)
    Flow run(const Ast::Execute &node);
    void executeText(std::string_view sql, Variables &variables);
    void executeSql(const Ast::Execute &node);
    std::vector<ProcedureArgument> evaluateArguments(const Ast::Execute &node);
    /// Runs `work` in a frame of its own, within the nesting limit; its temporary tables go with it.
    void inFrame(Frame &frame, const std::function<void()> &work);
    void dropTables(TableMap &tables, bool variablesOnly);
    std::vector<CollectingSink::Row> collectExecuted(const Ast::Execute &node);
    /// Runs a procedure; afterwards the arguments for output parameters hold what it left in them.
    std::int32_t callModule(const ModulePtr &module, const DatabasePtr &database,
                            std::vector<ProcedureArgument> &arguments);
    std::int32_t call(const Ast::ObjectName &name, std::vector<ProcedureArgument> &arguments);
    std::optional<std::int32_t> callSystemProcedure(const Ast::ObjectName &name,
                                                    std::vector<ProcedureArgument> &arguments);
    void bindParameters(const Module &module, std::vector<ProcedureArgument> &arguments, Frame &frame);
    Value convertedArgument(const ProcedureArgument &argument, const SqlType &type) const;
    std::string nameOfIdentityInsert() const;
    void bindTableParameter(const ModuleParameter &parameter, const ProcedureArgument *argument,
                            Frame &frame);
    void runModule(const Module &module, const DatabasePtr &database, Frame &frame);
    Value callFunction(const Module &module, std::span<const Value> arguments);
    std::vector<std::vector<Value>> callTableFunction(const Module &module, std::span<const Value> arguments);
    void declareArguments(const Module &module, std::span<const Value> arguments, Frame &frame);
    void runFunction(const Module &module, Frame &frame);
    void requireOutsideFunction(const char *what) const;

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

    // Changes (InterpreterInsert.cpp, InterpreterUpdate.cpp, InterpreterTriggers.cpp)
    Flow run(const Ast::Insert &node);
    Flow run(const Ast::Update &node);
    Flow run(const Ast::Delete &node);
    Flow run(const Ast::TruncateTable &node);
    void insertFrom(const Bound::Query &query, const Table &table, InsertRun &insert,
                    const std::vector<std::size_t> &targets, bool readsItself);
    void insertCollected(const std::vector<CollectingSink::Row> &rows, const Table &table, InsertRun &insert,
                         const std::vector<std::size_t> &targets);
    void endChange(std::uint64_t count, std::uint16_t command);
    struct ChangedRows
    {
        const std::vector<std::vector<Value>> &inserted, &deleted;
        std::set<std::string> updatedColumns; ///< folded names
    };
    void fireTriggers(const std::vector<ModulePtr> &triggers, const std::vector<TableColumn> &columns,
                      const ChangedRows &rows);
    void fireTrigger(const Module &trigger, const std::vector<TableColumn> &columns, const ChangedRows &rows);
    void fillTriggerTable(const std::string &name, const std::vector<TableColumn> &columns,
                          const std::vector<std::vector<Value>> &rows, Frame &frame);

    // Definitions (InterpreterDefinitions.cpp, InterpreterAlterTable.cpp, InterpreterIndexes.cpp,
    // InterpreterModules.cpp)
    Flow run(const Ast::CreateTable &node);
    Flow run(const Ast::AlterTable &node);
    Flow run(const Ast::DropTable &node);
    Flow run(const Ast::CreateIndex &node);
    Flow run(const Ast::AlterIndex &node);
    Flow run(const Ast::DropIndex &node);
    Flow run(const Ast::CreateModule &node);
    void defineModule(const Ast::CreateModule &node);
    Flow run(const Ast::DropObjects &node);
    Flow run(const Ast::CreateSchema &node);
    Flow run(const Ast::CreateType &node);
    Flow run(const Ast::CreateSynonym &node);
    Flow run(const Ast::CreateDatabase &node);
    Flow run(const Ast::AlterDatabase &node);
    Flow run(const Ast::DropDatabase &node);
    /// Where a new object goes.
    struct Place
    {
        DatabasePtr database; ///< null for a temporary table
        std::string schema = "dbo";
    };
    /// Throws 2714 when the name is taken, 2760 and 911 when schema or database are not there.
    Place placeOfNew(const Ast::ObjectName &name, bool mayExist = false);
    /// The same for what #name does not make temporary: types.
    Place placeOfPermanent(const Ast::ObjectName &name, bool mayExist);
    void createStorage(Table &definition, const DatabasePtr &database);
    TablePtr stored(const TablePtr &table, const DatabasePtr &database);
    Bound::TableScan createTable(Table definition, const DatabasePtr &database);
    void createPhysicalIndex(const Bound::TableScan &scan, TableIndex &index);
    /// Puts a changed definition in the place of a table's; takes it back should the transaction be rolled
    /// back.
    void replaceTable(const Bound::TableScan &scan, Table changed);
    void replaceObject(const DatabasePtr &database, const ObjectPtr &before, ObjectPtr after);
    Bound::TableScan tableToAlter(const Ast::ObjectName &name);
    Bound::TableScan scanOf(const TablePtr &table, const DatabasePtr &database) const;
    TablePtr findTemporary(const std::string &name) const;
    void eraseTemporary(const Table &table);
    void addToTable(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void alterColumn(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void dropFromTable(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void enableConstraints(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void enableTriggers(const Ast::AlterTable &node, const Bound::TableScan &scan);
    void fillColumn(const Bound::TableScan &scan, const TableColumn &column,
                    const Bound::ExpressionPtr &value);
    void requireUniqueRows(const Bound::TableScan &scan, const TableIndex &index, const char *statement);
    void requireConstraints(const Bound::TableScan &scan, const Table &before);
    void describeModule(Module &module, const DatabasePtr &database);
    void dropObject(const Ast::ObjectName &name, const std::string &kind, bool ifExists);
    void dropSchema(const std::string &name, bool ifExists);
    void dropType(const Ast::ObjectName &name, bool ifExists);
    // Names and locks (InterpreterNames.cpp)
    struct FoundObject
    {
        ObjectPtr object; ///< null when there is none
        DatabasePtr database;
    };
    FoundObject findObject(const Ast::ObjectName &name, bool followSynonyms = true);
    // System procedures (SystemProcedures.cpp)
    void showText(const std::string &objectName);
    void rename(const std::string &what, const std::string &newName, const std::string &kind);
    bool renamePart(const Bound::TableScan &scan, const std::string &part, const std::string &newName,
                    bool isColumn);
    void renameWhole(const FoundObject &found, const std::string &newName);
    Flow createViewIndex(const Ast::CreateIndex &node, const FoundObject &found);
    bool dropViewIndex(const Ast::DropIndex::Item &item);
    bool renameConstraint(const Ast::ObjectName &name, const std::string &newName);
    void changeProperty(const std::string &procedure, const std::vector<ProcedureArgument> &arguments);

    void requireReachable(const Ast::ObjectName &name) const;
    Bound::TableScan findTable(const Ast::ObjectName &name) override;
    Bound::TableScan findOrNull(const Ast::ObjectName &name);
    NamedSource findSource(const Ast::ObjectName &name) override;
    bool findSystemSource(const Ast::ObjectName &name, NamedSource &source);
    ModulePtr findFunction(const Ast::ObjectName &name, DatabasePtr &database) override;
    NamedType findType(const Ast::TypeName &name, int position) override;
    std::unique_ptr<ModuleNames> enterModule(const Module &module, const DatabasePtr &database) override;
    std::shared_ptr<const RowProvider> functionRows(const ModulePtr &module,
                                                    const DatabasePtr &database) override;
    void willRead(const Bound::TableScan &scan, bool readUncommitted) override;
    void willWrite(const Bound::TableScan &scan);
    /// Waits for the locks of everything that was bound since the last call. Throws DefinitionsChanged when,
    /// by the time they were granted, a name had come to mean another table.
    void lockUses();
    DatabasePtr findDatabase(const std::string &name) const;
    std::string fullName(const Table &table) const;
    void provideNames();

    friend class CurrentModule;
    friend class InsertRun;
    friend class InsteadOf;
    friend class RowSearch;
    friend class RowWriter;
    friend class TableBuilder;
    friend class TableChange;

    Binder binder() { return Binder(m_context, *this, m_frame->variables); }

    const std::shared_ptr<Server> m_server;
    ServerState &m_state;
    EvaluationContext m_context;
    SessionOptions m_options;
    SessionInfo m_info;
    Frame m_batch; ///< its temporary tables are the session's
    Frame *m_frame = &m_batch;
    std::vector<int> m_tries; ///< how deeply nested the TRY blocks around the current statement stand
    SqliteConnection m_connection;
    Transactions m_transactions;
    DatabasePtr m_database;             ///< what the session uses, or inside of a module where that is
    std::string m_nameSchema = "dbo";   ///< where names without a schema are looked for first
    ResultSink *m_sink = nullptr;       ///< set while a batch runs
    int m_line = 1;                     ///< of the statement that runs
    std::set<std::int64_t> m_insteadOf; ///< the INSTEAD OF triggers that run
    int m_callbacks = 0;                ///< how many functions run inside of a statement of SQLite's
    std::vector<TableUse> m_uses;       ///< what the statement being bound will do with which tables
};

} // namespace SampleServer
