#include "Engine/Bind/Binder.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Functions.h"
#include "Engine/ScopedValue.h"
#include "Types/Collation.h"

#include <algorithm>

// WITH: references to common tables are replaced with their queries; recursive ones become RecursiveRows.
namespace SampleServer {

using namespace Bound;

namespace {

bool names(const Ast::TableSource &source, const std::string &folded)
{
    if (const auto *named = std::get_if<Ast::NamedTable>(&source.node))
        return named->name.parts.size() == 1 && foldedName(named->name.object()) == folded;
    const auto *join = std::get_if<Ast::Join>(&source.node);
    return join && (names(*join->left, folded) || names(*join->right, folded));
}

bool names(const Ast::Query &query, const std::string &folded)
{
    if (query.op)
        return names(*query.left, folded) || names(*query.right, folded);
    return std::any_of(query.specification.from.begin(), query.specification.from.end(),
                       [&](const auto &source) { return names(*source, folded); });
}

/// The queries combined by UNION ALL.
void unionTerms(const Ast::Query &query, std::vector<const Ast::Query *> &terms)
{
    if (query.op == Ast::SetOperator::UnionAll) {
        unionTerms(*query.left, terms);
        unionTerms(*query.right, terms);
    } else {
        terms.push_back(&query);
    }
}

/// The depth of a row of a recursive common table, one more than that of the row it was derived from.
/// selector: the limit, 0 for none.
Value nextDepth(EvaluationContext &, const Operation &operation, std::span<const Value> arguments)
{
    const std::int64_t depth = std::get<std::int64_t>(arguments[0]) + 1;
    if (operation.selector > 0 && depth > operation.selector)
        throw EngineError(530, 16, 1,
                          "The statement terminated. The maximum recursion " +
                              std::to_string(operation.selector) +
                              " has been exhausted before statement completion.");
    return depth;
}

} // namespace

void Binder::useCommonTables(const std::vector<Ast::CommonTable> &tables)
{
    if (tables.empty())
        return;
    m_statementCommon.reset(new CommonTableScope{tables, tables.size(), m_common});
    m_common = m_statementCommon.get();
}

/// Finds the common table of a name in a FROM clause; null if there is none.
SourcePtr Binder::findCommon(const Ast::TableSource &source, const Ast::ObjectName &name, Scope &scope)
{
    if (name.parts.size() != 1)
        return nullptr;
    const std::string folded = foldedName(name.object());
    for (const CommonTableScope *common = m_common; common; common = common->outer) {
        if (common->ownColumns && foldedName(common->tables[common->visible].name) == folded)
            return bindOwnReference(source, *common, scope);
        for (std::size_t i = 0; i < common->visible; ++i)
            if (foldedName(common->tables[i].name) == folded)
                return bindCommon(source, *common, i, scope);
    }
    return nullptr;
}

SourcePtr Binder::bindCommon(const Ast::TableSource &source, const CommonTableScope &common,
                             std::size_t index, Scope &scope)
{
    const Ast::CommonTable &table = common.tables[index];
    if (names(*table.query->query, foldedName(table.name)))
        return bindRecursive(source, common, index, scope);
    const CommonTableScope before{common.tables, index, common.outer};
    const QueryPtr query = [&] {
        const ScopedValue<const CommonTableScope *> visible(m_common, &before);
        const ScopedValue<Scope *> alone(m_scope, nullptr);
        return bindSubquery(*table.query, true);
    }();
    ScopeSource entry;
    entry.name = source.alias.empty() ? table.name : source.alias;
    return addQuery(std::move(entry), query, table.columns, scope, false);
}

SourcePtr Binder::bindRecursive(const Ast::TableSource &source, const CommonTableScope &common,
                                std::size_t index, Scope &scope)
{
    const Ast::CommonTable &table = common.tables[index];
    std::vector<const Ast::Query *> terms, anchors, steps;
    unionTerms(*table.query->query, terms);
    for (const Ast::Query *term : terms)
        (names(*term, foldedName(table.name)) ? steps : anchors).push_back(term);
    if (terms.size() == 1)
        throw EngineError(252, 16, 1,
                          "Recursive common table expression '" + table.name +
                              "' does not contain a top-level UNION ALL operator.",
                          ErrorEffect::EndsBatch);
    if (anchors.size() != 1)
        throw anchors.empty()
            ? EngineError(246, 16, 1,
                          "No anchor member was specified for recursive query \"" + table.name + "\".",
                          ErrorEffect::EndsBatch)
            : Errors::notSupported("a recursive common table expression with more than one anchor");
    const ScopedValue<Scope *> alone(m_scope, nullptr);
    CommonTableScope own{common.tables, index, common.outer};
    RecursiveRows rows;
    {
        const ScopedValue<const CommonTableScope *> visible(m_common, &own);
        rows.anchor = bindQuery(*anchors[0], nullptr);
    }
    std::vector<ColumnInfo> columns;
    for (const OutputColumn &column : rows.anchor->columns)
        columns.push_back(column.info);
    for (std::size_t i = 0; i < table.columns.size() && i < columns.size(); ++i)
        columns[i].name = table.columns[i];
    for (ColumnInfo &column : columns)
        column.nullable = true;
    own.ownColumns = &columns;
    own.ownName = rows.name = 'r' + std::to_string(++m_aliases);
    for (const Ast::Query *step : steps)
        rows.steps.push_back(bindStep(*step, own, *rows.anchor));
    auto result = std::make_shared<Query>(*rows.anchor); // only its columns are used
    for (std::size_t i = 0; i < columns.size(); ++i)
        result->columns[i].info = columns[i];
    ScopeSource entry;
    entry.name = source.alias.empty() ? table.name : source.alias;
    Source made = *addQuery(std::move(entry), result, table.columns, scope, false);
    made.node = std::move(rows);
    return std::make_shared<const Source>(std::move(made));
}

/// Binds a query over the previous rows. Its columns have the types of the anchor's; the depth is the last
/// column.
QueryPtr Binder::bindStep(const Ast::Query &step, const CommonTableScope &own, const Query &anchor)
{
    const ScopedValue<const CommonTableScope *> visible(m_common, &own);
    const ScopedValue<std::string> alias(m_recursiveAlias, {});
    if (step.op || !step.specification.groupBy.empty() || step.specification.distinct ||
        step.specification.top)
        throw EngineError(
            460, 16, 1,
            "DISTINCT, TOP, GROUP BY and set operators are not allowed in the recursive part of a "
            "recursive common table expression '" +
                own.tables[own.visible].name + "'.",
            ErrorEffect::EndsBatch);
    const QueryPtr bound = bindQuery(step, nullptr);
    if (bound->columns.size() != anchor.columns.size())
        throw EngineError(
            205, 16, 1,
            "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of "
            "expressions in their target lists.",
            ErrorEffect::EndsBatch);
    auto query = std::make_shared<Query>(*bound);
    for (std::size_t i = 0; i < query->columns.size(); ++i) {
        OutputColumn &column = query->columns[i];
        const SqlType &type = anchor.columns[i].info.type;
        if (!isNullLiteral(*column.expression) && column.info.type != type)
            throw EngineError(240, 16, 1,
                              "Types don't match between the anchor and the recursive part in column \"" +
                                  (*own.ownColumns)[i].name + "\" of recursive query \"" +
                                  own.tables[own.visible].name + "\".",
                              ErrorEffect::EndsBatch);
        column.expression = converted(column.expression, type);
    }
    Operation operation;
    operation.function = nextDepth;
    operation.result = IntType;
    operation.selector = m_maxRecursion;
    auto depth =
        std::make_shared<const Expression>(Expression{IntType, false, Column{m_recursiveAlias, "depth"}});
    query->columns.push_back({ColumnInfo{"depth", IntType}, call(std::move(operation), {std::move(depth)})});
    return query;
}

SourcePtr Binder::bindOwnReference(const Ast::TableSource &source, const CommonTableScope &common,
                                   Scope &scope)
{
    const std::string alias = newAlias();
    m_recursiveAlias = alias;
    ScopeSource entry;
    entry.name = source.alias.empty() ? common.tables[common.visible].name : source.alias;
    for (std::size_t i = 0; i < common.ownColumns->size(); ++i) {
        ScopeColumn column;
        column.info = (*common.ownColumns)[i];
        column.source = alias;
        column.column = 'c' + std::to_string(i + 1);
        entry.columns.push_back(std::move(column));
    }
    addSource(std::move(entry), scope);
    return std::make_shared<const Source>(Source{alias, RecursiveReference{common.ownName}});
}

} // namespace SampleServer
