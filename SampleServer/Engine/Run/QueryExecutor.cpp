#include "Engine/Run/QueryExecutor.h"
#include "Engine/Emit/Emitter.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/RowGenerator.h"
#include "Engine/Run/Compute.h"
#include "Engine/Run/RowWriter.h"
#include "Engine/Run/TextSize.h"
#include "Types/TypeTraits.h"

#include <algorithm>
#include <limits>

namespace SampleServer {

namespace {

/// The number of rows between two checks for cancellation.
constexpr std::uint64_t AttentionRows = 64;
constexpr std::uint64_t NoLimit = std::numeric_limits<std::uint64_t>::max();

std::uint64_t countOf(const Bound::ExpressionPtr &expression)
{
    return static_cast<std::uint64_t>(std::get<std::int64_t>(*Bound::constantValue(*expression)));
}

std::vector<std::uint16_t> orderColumns(const Bound::Query &query)
{
    std::vector<std::uint16_t> columns;
    for (const Bound::OrderItem &item : query.orderBy)
        if (!item.expression)
            columns.push_back(static_cast<std::uint16_t>(item.output + 1));
    return columns;
}

std::vector<ColumnInfo> columnInfos(const Bound::Query &query)
{
    std::vector<ColumnInfo> infos;
    for (const Bound::OutputColumn &column : query.columns)
        infos.push_back(column.info);
    return infos;
}

bool isPlain(const Bound::Query &query)
{
    return !query.op && !query.grouped && !query.distinct && query.orderBy.empty() && !query.where &&
           !query.offset && !query.withTies && !query.percent;
}

/// Returns the row of a SELECT of constants without FROM, which needs no execution.
std::optional<std::vector<Value>> constantRow(const Bound::Query &query)
{
    if (!isPlain(query) || !query.from.empty())
        return {};
    std::vector<Value> row;
    for (const Bound::OutputColumn &column : query.columns) {
        const Value *value = Bound::constantValue(*column.expression);
        if (!value)
            return {};
        row.push_back(*value);
    }
    return row;
}

bool assignsVariables(const Ast::Select &node)
{
    if (node.query->op)
        return false;
    const auto &items = node.query->specification.items;
    const auto assigning =
        std::count_if(items.begin(), items.end(), [](const auto &item) { return !item.variable.empty(); });
    if (assigning != 0 && assigning != static_cast<std::ptrdiff_t>(items.size()))
        throw EngineError(141, 15, 1,
                          "A SELECT statement that assigns a value to a variable must not be combined with "
                          "data-retrieval operations.",
                          ErrorEffect::EndsBatch);
    return assigning != 0;
}

/// Finds the target of SELECT ... INTO in a query or combined queries; null if there is none.
const Ast::ObjectName *intoTarget(const Ast::Query &query)
{
    const Ast::Query *first = &query;
    while (first->op)
        first = first->left.get();
    return first->specification.into ? &*first->specification.into : nullptr;
}

} // namespace

std::optional<std::uint64_t> QueryExecutor::fetchGenerated(const Bound::Query &query, std::uint64_t limit,
                                                           const RowReceiver &receive)
{
    if (!isPlain(query) || query.from.size() != 1)
        return {};
    const auto *rows = std::get_if<Bound::GeneratedRows>(&query.from[0]->node);
    const Value *count = rows ? Bound::constantValue(*rows->count) : nullptr;
    if (!count)
        return {};
    std::vector<std::size_t> wanted;
    for (const Bound::OutputColumn &column : query.columns) {
        const auto *reference = std::get_if<Bound::Column>(&column.expression->node);
        if (!reference)
            return {};
        const auto &known = RowGenerator::columns();
        const auto found = std::find_if(known.begin(), known.end(),
                                        [&](const ColumnInfo &info) { return info.name == reference->name; });
        wanted.push_back(static_cast<std::size_t>(found - known.begin()));
    }
    const auto available = static_cast<std::uint64_t>(
        isNull(*count) ? 0 : std::max<std::int64_t>(std::get<std::int64_t>(*count), 0));
    const std::uint64_t total = std::min(available, limit);
    RowGenerator generator(std::move(wanted));
    for (std::uint64_t number = 1; number <= total; ++number) {
        if (number % AttentionRows == 0)
            m_session.checkAttention();
        receive(generator.row(static_cast<std::int64_t>(number)));
    }
    return total;
}

std::uint64_t QueryExecutor::fetch(const Bound::Query &query, const RowReceiver &receive)
{
    const bool counts = query.limit && !query.offset && !query.withTies && !query.percent;
    std::uint64_t limit = counts ? countOf(query.limit) : NoLimit;
    if (m_session.options.rowLimit > 0)
        limit = std::min(limit, static_cast<std::uint64_t>(m_session.options.rowLimit));
    if (const auto row = constantRow(query)) {
        if (limit > 0)
            receive(*row);
        return std::min<std::uint64_t>(limit, 1);
    }
    if (const auto count = fetchGenerated(query, limit, receive))
        return *count;
    m_names.lockUses();
    const Emitted emitted = emitQuery(query);
    SqliteStatement statement(m_session.connection, emitted.sql);
    statement.bind(emitted.parameters);
    std::vector<Value> row(query.columns.size());
    std::uint64_t count = 0;
    while (count < limit && statement.step()) {
        for (std::size_t i = 0; i < row.size(); ++i)
            statement.read(static_cast<int>(i), query.columns[i].info.type, row[i]);
        receive(row);
        if (++count % AttentionRows == 0)
            m_session.checkAttention();
    }
    return count;
}

Value QueryExecutor::evaluate(const Bound::Expression &expression)
{
    if (const Value *value = Bound::constantValue(expression))
        return *value;
    m_names.lockUses();
    Emitted emitted = emitExpression(expression);
    SqliteStatement statement(m_session.connection, "SELECT " + emitted.sql);
    statement.bind(emitted.parameters);
    Value value;
    if (statement.step())
        statement.read(0, expression.type, value);
    return value;
}

Value QueryExecutor::evaluate(const Ast::Expression &expression, const SqlType &type)
{
    return evaluate(*binder().bindValueAs(expression, type));
}

void QueryExecutor::assign(const std::string &variable, Value value, const SqlType &type)
{
    VariableSlot *slot = m_session.frame->variables.find(variable);
    if (!slot)
        throw Errors::mustDeclareVariable(variable);
    slot->value = convertValue(value, type, slot->type, {0, m_session.evaluation.dateOrder});
}

void QueryExecutor::run(const Ast::Select &node)
{
    if (assignsVariables(node)) {
        runAssignments(node);
        m_session.endWithoutCount();
        return;
    }
    if (intoTarget(*node.query)) {
        selectInto(node);
        return;
    }
    if (m_session.callbacks > 0)
        throw EngineError(444, 16, 2,
                          "Select statements included within a function cannot return data to a client.",
                          ErrorEffect::EndsBatch);
    const Bound::QueryPtr query = binder().bindSelect(node);
    ComputeRows compute(node, *query, *m_session.sink);
    m_names.lockUses(); // before any output is sent
    m_session.sink->columns(columnInfos(*query), orderColumns(*query));
    compute.announce();
    StatementEnd end;
    end.inProcedure = m_session.frame->module != nullptr;
    end.currentCommand = 0xC1;
    std::uint64_t count = 0;
    if (!m_session.options.formatOnly) {
        const TextSizeLimit textSize(*query, m_session.evaluation.textSize);
        try {
            fetch(*query, [&](std::span<const Value> row) {
                compute.beforeRow(row);
                m_session.sink->row(textSize.apply(row));
                compute.afterRow(row);
                ++count;
            });
        } catch (const EngineError &error) {
            if (m_errors.isInTry()) { // the error is not sent: the result ends without it
                end.rowCount = count;
                m_session.sink->endStatement(end);
            }
            throw;
        }
        compute.finish();
    }
    m_session.evaluation.rowCount = static_cast<std::int64_t>(count);
    if (!m_session.options.noCount)
        end.rowCount = count;
    m_session.sink->endStatement(end);
}

/// SELECT @x = expression ...: evaluated row by row, so that an expression can use the previous row's value.
void QueryExecutor::runAssignments(const Ast::Select &node)
{
    Binder live = binder();
    live.useLiveVariables();
    const Bound::QueryPtr query = live.bindSelect(node);
    const auto &items = node.query->specification.items;
    const std::uint64_t count = fetch(*query, [&](std::span<const Value> row) {
        for (std::size_t i = 0; i < items.size(); ++i)
            assign(items[i].variable, row[i], query->columns[i].info.type);
    });
    m_session.evaluation.rowCount = static_cast<std::int64_t>(count);
}

void QueryExecutor::selectInto(const Ast::Select &node)
{
    const Ast::ObjectName &name = *intoTarget(*node.query);
    const NewPlace place = m_names.placeOfNew(name);
    const DatabasePtr &database = place.database;
    const Bound::QueryPtr query = binder().bindSelect(node);
    Table definition;
    definition.name = name.object();
    definition.schema = place.schema;
    const bool joins = query->from.size() != 1 ||
                       std::holds_alternative<Bound::JoinedSources>(query->from[0]->node); // several tables
    for (const Bound::OutputColumn &output : query->columns) {
        if (output.info.name.empty())
            throw Errors::emptyIdentifier();
        TableColumn column;
        column.name = output.info.name;
        column.id = column.storage = ++definition.lastColumnId;
        column.type = output.info.type;
        column.nullable = output.info.nullable;
        column.identity = output.info.identity && !definition.identity && !query->op && !joins;
        if (column.identity)
            definition.identity = std::make_shared<IdentityCounter>(1, 1);
        if (definition.findColumn(column.name))
            throw EngineError(2705, 16, 3,
                              "Column names in each table must be unique. Column name '" + column.name +
                                  "' in table '" + name.object() + "' is specified more than once.",
                              ErrorEffect::EndsBatch);
        definition.columns.push_back(std::move(column));
    }
    Transactions::Change change(m_session.transactions);
    const Bound::TableScan scan = m_store.createTable(std::move(definition), database);
    RowWriter writer(*this, scan);
    const std::uint64_t count = fetch(*query, [&](std::span<const Value> row) {
        writer.insert({row.begin(), row.end()});
        for (std::size_t i = 0; i < row.size(); ++i)
            if (scan.table->columns[i].identity && !isNull(row[i]))
                scan.table->identity->sawExplicit(std::get<std::int64_t>(
                    convertValue(row[i], scan.table->columns[i].type, {TypeId::BigInt, 0, 0, 0})));
    });
    change.finish();
    m_session.endChange(count, 0xC1);
}

} // namespace SampleServer
