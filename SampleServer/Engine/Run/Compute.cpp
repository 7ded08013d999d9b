#include "Engine/Run/Compute.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Compare.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/Functions.h"
#include "Types/Collation.h"
#include "Types/DecimalMath.h"
#include "Types/TypeTraits.h"

#include <array>

namespace SampleServer {

namespace {

/// The select list column that an expression of a COMPUTE clause matches; empty if none.
std::optional<std::size_t> findOutput(const Ast::Expression &expression, const Bound::Query &query)
{
    const auto *reference = std::get_if<Ast::ColumnReference>(&expression.node);
    if (!reference)
        return {};
    const std::string name = foldedName(reference->name.object());
    for (std::size_t i = 0; i < query.columns.size(); ++i)
        if (foldedName(query.columns[i].info.name) == name)
            return i;
    return {};
}

std::optional<ComputeColumn::Function> functionOf(const std::string &name)
{
    using Function = ComputeColumn::Function;
    static constexpr std::pair<std::string_view, Function> functions[] = {{"SUM", Function::Sum},
                                                                          {"AVG", Function::Avg},
                                                                          {"COUNT", Function::Count},
                                                                          {"MIN", Function::Min},
                                                                          {"MAX", Function::Max}};
    for (const auto &[known, function] : functions)
        if (known == name)
            return function;
    return {};
}

EngineError notSelected(std::size_t clause, const char *what, std::size_t item)
{
    return {411, 16, 1,
            "COMPUTE clause #" + std::to_string(clause) + ", " + what + " expression #" +
                std::to_string(item) + " is not in the select list.",
            ErrorEffect::EndsBatch};
}

} // namespace

ComputeRows::ComputeRows(const Ast::Select &select, const Bound::Query &query, ResultSink &sink)
    : m_sink(sink)
{
    for (const Ast::Compute &compute : select.compute) {
        Clause clause;
        const std::size_t number = m_clauses.size() + 1;
        for (const Ast::ComputeItem &item : compute.items) {
            const auto operand = findOutput(*item.argument, query);
            if (!operand)
                throw notSelected(number, "aggregate", clause.totals.size() + 1);
            clause.totals.push_back(makeTotal(item, *operand, query.columns[*operand].info.type));
        }
        for (std::size_t i = 0; i < compute.by.size(); ++i) {
            const auto column = findOutput(*compute.by[i], query);
            if (!column)
                throw notSelected(number, "'by'", i + 1);
            const bool ordered = i < query.orderBy.size() && !query.orderBy[i].expression &&
                                 query.orderBy[i].output == *column;
            if (!ordered)
                throw EngineError(143, 15, 1,
                                  "A COMPUTE BY item was not found in the order by list. All expressions in "
                                  "the compute by list must also be present in the order by list.",
                                  ErrorEffect::EndsBatch);
            clause.by.push_back(static_cast<std::uint16_t>(*column + 1));
        }
        m_clauses.push_back(std::move(clause));
    }
}

ComputeRows::Total ComputeRows::makeTotal(const Ast::ComputeItem &item, std::size_t operand,
                                          const SqlType &type)
{
    const auto function = functionOf(item.function);
    if (!function)
        throw Errors::notSupported("COMPUTE " + item.function);
    Total total;
    total.column.function = *function;
    total.column.operand = static_cast<std::uint16_t>(operand + 1);
    total.operandType = type;
    switch (*function) {
    case ComputeColumn::Function::Count:
        total.column.type = {TypeId::Int, 0, 0, 0};
        break;
    case ComputeColumn::Function::Min:
    case ComputeColumn::Function::Max:
        total.column.type = type;
        break;
    default:
        total.sumType = sumType(type, item.function);
        total.column.type = *function == ComputeColumn::Function::Avg ? averageType(type) : total.sumType;
    }
    return total;
}

void ComputeRows::announce()
{
    for (std::size_t i = 0; i < m_clauses.size(); ++i) {
        std::vector<ComputeColumn> columns;
        for (const Total &total : m_clauses[i].totals)
            columns.push_back(total.column);
        m_sink.computeColumns(static_cast<std::uint16_t>(i + 1), columns, m_clauses[i].by);
    }
}

void ComputeRows::add(Total &total, const Value &value)
{
    if (isNull(value))
        return;
    ++total.count;
    const bool first = isNull(total.value);
    switch (total.column.function) {
    case ComputeColumn::Function::Count:
        return;
    case ComputeColumn::Function::Min:
    case ComputeColumn::Function::Max: {
        const bool isMin = total.column.function == ComputeColumn::Function::Min;
        if (first || (compareValues(value, total.value) < 0) == isMin)
            total.value = value;
        return;
    }
    default:
        break;
    }
    const Value addend = convertValue(value, total.operandType, total.sumType);
    if (first) {
        total.value = addend;
        return;
    }
    Bound::Operation sum;
    sum.selector = static_cast<int>(ArithmeticOperator::Add);
    sum.result = total.sumType;
    const Bound::ScalarFunction function = isFloat(total.sumType.id)     ? Functions::floatArithmetic
                                           : isInteger(total.sumType.id) ? Functions::integerArithmetic
                                                                         : Functions::decimalArithmetic;
    EvaluationContext unused;
    const std::array<Value, 2> both{total.value, addend};
    total.value = function(unused, sum, both);
}

Value ComputeRows::result(const Total &total)
{
    if (total.column.function == ComputeColumn::Function::Count)
        return total.count;
    if (total.column.function != ComputeColumn::Function::Avg || isNull(total.value))
        return total.value;
    Bound::Operation average;
    average.result = total.column.type;
    EvaluationContext unused;
    const std::array<Value, 2> both{total.value, total.count};
    return Functions::average(unused, average, both);
}

bool ComputeRows::sameGroup(const Clause &clause, std::span<const Value> row)
{
    for (std::size_t i = 0; i < clause.by.size(); ++i) {
        const Value &now = row[clause.by[i] - 1U], &before = clause.group[i];
        if (isNull(now) != isNull(before) || (!isNull(now) && compareValues(now, before) != 0))
            return false;
    }
    return true;
}

void ComputeRows::send(std::size_t number)
{
    Clause &clause = m_clauses[number];
    std::vector<Value> values;
    for (Total &total : clause.totals) {
        values.push_back(result(total));
        total.count = 0;
        total.value = Value();
    }
    clause.hasRows = false;
    m_sink.computeRow(static_cast<std::uint16_t>(number + 1), values);
}

void ComputeRows::beforeRow(std::span<const Value> row)
{
    for (std::size_t i = 0; i < m_clauses.size(); ++i)
        if (!m_clauses[i].by.empty() && m_clauses[i].hasRows && !sameGroup(m_clauses[i], row))
            send(i);
}

void ComputeRows::afterRow(std::span<const Value> row)
{
    for (Clause &clause : m_clauses) {
        clause.hasRows = true;
        clause.group.clear();
        for (const std::uint16_t column : clause.by)
            clause.group.push_back(row[column - 1U]);
        for (Total &total : clause.totals)
            add(total, row[total.column.operand - 1U]);
    }
}

void ComputeRows::finish()
{
    for (std::size_t i = 0; i < m_clauses.size(); ++i)
        if (m_clauses[i].by.empty() || m_clauses[i].hasRows)
            send(i);
}

} // namespace SampleServer
