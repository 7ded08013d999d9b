#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Run/InsteadOf.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/Run/TableChange.h"
#include "Types/Collation.h"

#include <algorithm>
#include <set>

namespace SampleServer {

/// Binds what UPDATE and DELETE have in common and finds their rows.
class RowSearch
{
public:
    /// The table that UPDATE and DELETE change, and the tables they look at to find its rows.
    struct Target
    {
        Bound::TableScan scan;
        std::string alias;
        std::vector<Bound::SourcePtr> from;
    };

    RowSearch(Interpreter &interpreter, const Ast::ObjectName &name,
              const std::vector<Ast::TableSourcePtr> &from, const std::vector<Ast::CommonTable> &with,
              const InsteadOf &instead, const char *verb)
        : m_interpreter(interpreter)
        , m_binder(interpreter.binder())
    {
        for (const Ast::CommonTable &common : with)
            if (name.parts.size() == 1 && foldedName(common.name) == foldedName(name.object()))
                throw Errors::notSupported("changes of rows through common table expressions");
        m_binder.useCommonTables(with);
        m_binder.enterScope(m_scope);
        m_target.from = m_binder.bindFrom(from, m_scope);
        if (!findInFrom(name)) {
            m_target.scan = instead.isActive() ? instead.target() : interpreter.findTable(name);
            m_target.from.push_back(m_binder.bindTarget(
                m_target.scan, instead.isActive() ? name.object() : m_target.scan.table->name, m_scope));
            m_target.alias = m_target.from.back()->alias;
        }
        if (m_target.scan.database)
            interpreter.requireOutsideFunction(verb);
        interpreter.willWrite(m_target.scan);
    }

    Binder &binder() { return m_binder; }
    const Target &target() const { return m_target; }
    const ScopeSource &source() const
    {
        return *std::find_if(
            m_scope.sources.begin(), m_scope.sources.end(),
            [this](const ScopeSource &source) { return source.columns.front().source == m_target.alias; });
    }

    std::vector<StoredRow> find(const std::vector<Bound::ExpressionPtr> &expressions,
                                const Ast::ExpressionPtr &where, const std::optional<Ast::Top> &top)
    {
        const auto condition = where ? m_binder.bindCondition(*where) : nullptr;
        if (top && top->percent)
            throw Errors::notSupported("TOP ... PERCENT in UPDATE and DELETE");
        const auto limit = top ? m_binder.bindValueAs(*top->count, BigIntType) : nullptr;
        m_interpreter.lockUses();
        const Emitted emitted =
            emitSelection({m_target.alias + ".rowid"}, expressions, m_target.from, condition, limit);
        SqliteStatement statement(m_interpreter.m_connection, emitted.sql);
        statement.bind(emitted.parameters);
        std::vector<StoredRow> rows;
        std::set<std::int64_t> seen; // a join may find a row more than once
        const bool joined = m_target.from.size() > 1 || m_scope.sources.size() > 1;
        const auto most = static_cast<std::size_t>(m_interpreter.m_options.rowLimit);
        while (statement.step()) {
            Value id;
            statement.read(0, BigIntType, id);
            StoredRow row;
            row.rowId = std::get<std::int64_t>(id);
            if (joined && !seen.insert(row.rowId).second)
                continue;
            row.values.resize(expressions.size());
            for (std::size_t i = 0; i < expressions.size(); ++i)
                statement.read(static_cast<int>(i) + 1, expressions[i]->type, row.values[i]);
            rows.push_back(std::move(row));
            if (most > 0 && rows.size() == most)
                break;
            if (rows.size() % 64 == 0)
                m_interpreter.checkAttention();
        }
        return rows;
    }

    /// Asks for every column as it is stored; computed ones are NULL.
    void addWholeRow(std::vector<Bound::ExpressionPtr> &expressions) const
    {
        for (const TableColumn &column : m_target.scan.table->columns) {
            if (column.computed) {
                expressions.push_back(Binder::null(column.type));
                continue;
            }
            Bound::Column reference{m_target.alias, column.physicalName()};
            expressions.push_back(std::make_shared<const Bound::Expression>(
                Bound::Expression{column.type, true, std::move(reference)}));
        }
    }

private:
    /// UPDATE c ... FROM Customers AS c names its target by alias; a table of the FROM clause may be named as
    /// such.
    bool findInFrom(const Ast::ObjectName &name)
    {
        for (const ScopeSource &source : m_scope.sources) {
            if (!source.table || foldedName(source.name) != foldedName(name.object()))
                continue;
            m_target.alias = source.columns.front().source;
            for (const Bound::SourcePtr &from : m_target.from)
                findScan(*from);
            return true;
        }
        return false;
    }

    void findScan(const Bound::Source &source)
    {
        if (const auto *join = std::get_if<Bound::JoinedSources>(&source.node)) {
            findScan(*join->left);
            findScan(*join->right);
        } else if (source.alias == m_target.alias) {
            m_target.scan = std::get<Bound::TableScan>(source.node);
        }
    }

    Interpreter &m_interpreter;
    Binder m_binder;
    Scope m_scope;
    Target m_target;
};

namespace {

/// One column that UPDATE sets.
struct Setting
{
    std::optional<std::size_t> column; ///< empty when only a variable is assigned
    std::string variable;
    Bound::ExpressionPtr value;
};

Setting bindSetting(RowSearch &search, const Ast::Assignment &assignment)
{
    const Table &table = *search.target().scan.table;
    Setting setting;
    setting.variable = assignment.variable;
    if (!assignment.column.empty()) {
        setting.column = table.findColumn(assignment.column);
        if (!setting.column)
            throw Errors::invalidColumn(assignment.column);
        const TableColumn &column = table.columns[*setting.column];
        if (column.identity)
            throw EngineError(8102, 16, 1, "Cannot update identity column '" + column.name + "'.",
                              ErrorEffect::EndsBatch);
        if (column.rowVersion)
            throw EngineError(272, 16, 1, "Cannot update a timestamp column.", ErrorEffect::EndsBatch);
        if (column.computed)
            throw EngineError(
                271, 16, 1,
                "The column \"" + column.name +
                    "\" cannot be modified because it is either a computed column or is the result of a "
                    "UNION operator.",
                ErrorEffect::EndsBatch);
    }
    if (assignment.value)
        setting.value = search.binder().bindValue(*assignment.value);
    else if (const auto &defaultValue = table.columns[*setting.column].defaultValue)
        setting.value = search.binder().bindValue(*defaultValue.expression);
    else
        setting.value = Binder::null(table.columns[*setting.column].type);
    if (setting.column && !Bound::isNullLiteral(*setting.value))
        requireConversion(setting.value->type, table.columns[*setting.column].type, false);
    return setting;
}

} // namespace

Interpreter::Flow Interpreter::run(const Ast::Update &node)
{
    InsteadOf instead(*this, node.table, TableChange::Event::Update);
    RowSearch search(*this, node.table, node.from, node.with, instead, "UPDATE");
    std::vector<Setting> settings;
    std::vector<Bound::ExpressionPtr> expressions;
    std::vector<std::size_t> columns;
    for (const Ast::Assignment &assignment : node.assignments) {
        settings.push_back(bindSetting(search, assignment));
        expressions.push_back(settings.back().value);
        const auto column = settings.back().column;
        if (column && std::find(columns.begin(), columns.end(), *column) != columns.end())
            throw assignedTwice(assignment.column);
        if (column)
            columns.push_back(*column);
    }
    const auto &tableColumns = search.target().scan.table->columns;
    const auto version = std::find_if(tableColumns.begin(), tableColumns.end(),
                                      [](const TableColumn &column) { return column.rowVersion; });
    if (version != tableColumns.end())
        columns.push_back(static_cast<std::size_t>(version - tableColumns.begin()));
    TableChange rows(*this, search.target().scan, TableChange::Event::Update, columns);
    const std::size_t firstOld = expressions.size();
    search.addWholeRow(expressions);
    const std::vector<StoredRow> found = search.find(expressions, node.where, node.top);
    if (m_options.formatOnly)
        return Flow::Next;
    Transactions::Change change(m_transactions);
    std::vector<StoredRow> before;
    std::vector<std::vector<Value>> after;
    for (const StoredRow &row : found) {
        before.push_back(
            {row.rowId, {row.values.begin() + static_cast<std::ptrdiff_t>(firstOld), row.values.end()}});
        after.push_back(before.back().values);
        if (version != tableColumns.end())
            after.back()[columns.back()] = nextRowVersion();
        for (std::size_t i = 0; i < settings.size(); ++i) {
            if (!settings[i].variable.empty())
                assign(settings[i].variable, row.values[i], settings[i].value->type);
            if (settings[i].column)
                after.back()[*settings[i].column] =
                    rows.writer().assigned(*settings[i].column, row.values[i], settings[i].value->type);
        }
    }
    if (instead.isActive())
        rows.keepRows();
    rows.update(before, after);
    rows.finish();
    if (instead.isActive())
        instead.fire(rows);
    change.finish();
    if (!node.isSilent)
        endChange(found.size(), 0xC5);
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::Delete &node)
{
    InsteadOf instead(*this, node.table, TableChange::Event::Delete);
    RowSearch search(*this, node.table, node.from, node.with, instead, "DELETE");
    TableChange rows(*this, search.target().scan, TableChange::Event::Delete);
    std::vector<Bound::ExpressionPtr> expressions;
    if (instead.isActive())
        rows.keepRows();
    if (rows.needsOldRows())
        search.addWholeRow(expressions);
    const std::vector<StoredRow> found = search.find(expressions, node.where, node.top);
    if (m_options.formatOnly)
        return Flow::Next;
    Transactions::Change change(m_transactions);
    for (const StoredRow &row : found) {
        rows.remove(row);
        checkAttention();
    }
    rows.finish();
    if (instead.isActive())
        instead.fire(rows);
    change.finish();
    endChange(found.size(), 0xC4);
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::TruncateTable &node)
{
    const Bound::TableScan scan = findOrNull(node.table);
    if (!scan.table)
        throw EngineError(4701, 16, 1,
                          "Cannot find the object \"" + node.table.object() +
                              "\" because it does not exist or you do not have permissions.",
                          ErrorEffect::EndsBatch);
    if (scan.database)
        for (const TablePtr &other : scan.database->referencing(scan.table->id))
            if (other->id != scan.table->id)
                throw EngineError(4712, 16, 1,
                                  "Cannot truncate table '" + node.table.object() +
                                      "' because it is being referenced by a FOREIGN KEY constraint.");
    if (scan.database)
        requireOutsideFunction("TRUNCATE TABLE");
    willWrite(scan);
    lockUses();
    Transactions::Change change(m_transactions);
    m_connection.execute("DELETE FROM " + scan.schema + '.' + scan.table->physicalName());
    change.finish();
    if (scan.table->identity)
        scan.table->identity->restart();
    m_context.rowCount = 0;
    return Flow::Next;
}

} // namespace SampleServer
