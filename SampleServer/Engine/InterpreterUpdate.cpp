#include "Engine/Errors.h"
#include "Engine/Interpreter.h"
#include "Engine/RowWriter.h"
#include "Engine/TypeRules.h"
#include "Types/Collation.h"

#include <algorithm>
#include <set>

namespace SampleServer {

namespace {

constexpr SqlType RowIdType{TypeId::BigInt, 0, 0, 0};

/// A row that is to change: where it is and what is read of it.
struct FoundRow
{
    std::int64_t rowId = 0;
    std::vector<Value> values;
};

/// The table that UPDATE and DELETE change, and the tables they look at to find its rows.
struct Target
{
    Bound::TableScan scan;
    std::string alias;
    std::vector<Bound::SourcePtr> from;
};

} // namespace

/// Binds what UPDATE and DELETE have in common and finds their rows.
class RowSearch
{
public:
    RowSearch(Interpreter &interpreter, const Ast::ObjectName &name,
              const std::vector<Ast::TableSourcePtr> &from, const std::vector<Ast::CommonTable> &with)
        : m_interpreter(interpreter)
        , m_binder(interpreter.binder())
    {
        m_binder.useCommonTables(with);
        m_binder.enterScope(m_scope);
        m_target.from = m_binder.bindFrom(from, m_scope);
        if (!findInFrom(name)) {
            m_target.scan = interpreter.findTable(name);
            m_target.from.push_back(m_binder.bindTarget(m_target.scan, m_target.scan.table->name, m_scope));
            m_target.alias = m_target.from.back()->alias;
        }
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

    std::vector<FoundRow> find(const std::vector<Bound::ExpressionPtr> &expressions,
                               const Ast::ExpressionPtr &where, const std::optional<Ast::Top> &top)
    {
        const auto condition = where ? m_binder.bindCondition(*where) : nullptr;
        const auto limit = top ? m_binder.bindValueAs(*top->count, RowIdType) : nullptr;
        m_interpreter.lockUses();
        const Emitted emitted =
            emitSelection({m_target.alias + ".rowid"}, expressions, m_target.from, condition, limit);
        SqliteStatement statement(m_interpreter.m_connection, emitted.sql);
        statement.bind(emitted.parameters);
        std::vector<FoundRow> rows;
        std::set<std::int64_t> seen; // a join may find a row more than once
        const bool joined = m_target.from.size() > 1 || m_scope.sources.size() > 1;
        const auto most = static_cast<std::size_t>(m_interpreter.m_options.rowLimit);
        while (statement.step()) {
            Value id;
            statement.read(0, RowIdType, id);
            FoundRow row;
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
        setting.value = search.binder().bindValue(*defaultValue);
    else
        setting.value = Binder::null(table.columns[*setting.column].type);
    if (setting.column && !Bound::isNullLiteral(*setting.value))
        requireConversion(setting.value->type, table.columns[*setting.column].type, false);
    return setting;
}

} // namespace

Interpreter::Flow Interpreter::run(const Ast::Update &node)
{
    RowSearch search(*this, node.table, node.from, node.with);
    const Table &table = *search.target().scan.table;
    std::vector<Setting> settings;
    std::vector<Bound::ExpressionPtr> expressions;
    std::vector<std::size_t> columns;
    for (const Ast::Assignment &assignment : node.assignments) {
        settings.push_back(bindSetting(search, assignment));
        expressions.push_back(settings.back().value);
        if (settings.back().column)
            columns.push_back(*settings.back().column);
    }
    const bool changesKey =
        std::any_of(table.keys.begin(), table.keys.end(), [&columns](const TableKey &key) {
            return std::any_of(key.columns.begin(), key.columns.end(), [&columns](std::size_t column) {
                return std::find(columns.begin(), columns.end(), column) != columns.end();
            });
        });
    // Where a key changes, all rows go before the first comes back, so that the new keys meet no old ones.
    const std::size_t firstOld = expressions.size();
    if (changesKey)
        for (const TableColumn &column : table.columns) {
            Bound::Column reference{search.target().alias, column.computed ? "rowid" : column.physicalName()};
            expressions.push_back(std::make_shared<const Bound::Expression>(
                Bound::Expression{column.computed ? RowIdType : column.type, true, std::move(reference)}));
        }
    const std::vector<FoundRow> rows = search.find(expressions, node.where, node.top);
    if (m_options.formatOnly)
        return Flow::Next;
    Transactions::Change change(m_transactions);
    RowWriter writer(*this, search.target().scan);
    if (changesKey)
        for (const FoundRow &row : rows)
            writer.remove(row.rowId);
    for (const FoundRow &row : rows) {
        std::vector<Value> changed;
        std::vector<Value> whole(row.values.begin() + static_cast<std::ptrdiff_t>(firstOld),
                                 row.values.end());
        for (std::size_t i = 0; i < settings.size(); ++i) {
            if (!settings[i].variable.empty())
                assign(settings[i].variable, row.values[i], settings[i].value->type);
            if (!settings[i].column)
                continue;
            changed.push_back(writer.assigned(*settings[i].column, row.values[i], settings[i].value->type));
            if (changesKey)
                whole[*settings[i].column] = changed.back();
        }
        if (changesKey)
            writer.insert(whole, row.rowId);
        else if (!columns.empty())
            writer.update(row.rowId, columns, changed);
        checkAttention();
    }
    change.finish();
    endChange(rows.size(), 0xC5);
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::Delete &node)
{
    RowSearch search(*this, node.table, node.from, node.with);
    const std::vector<FoundRow> rows = search.find({}, node.where, node.top);
    if (m_options.formatOnly)
        return Flow::Next;
    Transactions::Change change(m_transactions);
    RowWriter writer(*this, search.target().scan);
    for (const FoundRow &row : rows) {
        writer.remove(row.rowId);
        checkAttention();
    }
    change.finish();
    endChange(rows.size(), 0xC4);
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
