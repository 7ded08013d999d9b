#include "Engine/Bind/Binder.h"
#include "Engine/Emit/Emitter.h"
#include "Engine/Errors.h"
#include "Types/Collation.h"
#include "Types/Text.h"

namespace SampleServer {

using namespace Bound;

namespace {

bool sameName(std::string_view left, std::string_view right)
{
    return left == right || foldedName(left) == foldedName(right);
}

/// Whether a qualified name matches a column of the source: all given parts must match.
bool qualifies(const ScopeSource &source, const Ast::ObjectName &name)
{
    const std::string table = name.qualifier(1), schema = name.qualifier(2), database = name.qualifier(3);
    if (!table.empty() && !sameName(table, source.name))
        return false;
    if (!schema.empty() && !sameName(schema, source.schema))
        return false;
    return database.empty() || sameName(database, source.database);
}

EngineError notGrouped(const ScopeColumn &column, const Scope &scope)
{
    std::string name = column.info.name;
    for (const ScopeSource &source : scope.sources)
        for (const ScopeColumn &candidate : source.columns)
            if (&candidate == &column)
                name = source.name + '.' + name;
    const bool inOrder = scope.notGrouped == 8127;
    const char *clause = inOrder                    ? "ORDER BY clause"
                         : scope.notGrouped == 8121 ? "HAVING clause"
                                                    : "select list";
    const char quote = inOrder ? '"' : '\'';
    return {scope.notGrouped, 16, 1,
            "Column " + (quote + name + quote) + " is invalid in the " + clause +
                " because it is not contained in either an aggregate function or the GROUP BY clause.",
            ErrorEffect::EndsBatch};
}

} // namespace

void Binder::enterScope(Scope &scope)
{
    scope.outer = m_scope;
    m_scope = &scope;
}

void Binder::leaveScope()
{
    m_scope = m_scope->outer;
}

const ScopeColumn *Binder::findIn(const Scope &scope, const Ast::ObjectName &name) const
{
    const ScopeColumn *found = nullptr;
    const std::string folded = foldedName(name.object());
    for (const ScopeSource &source : scope.sources) {
        if (!qualifies(source, name))
            continue;
        for (const ScopeColumn &column : source.columns) {
            if (foldedName(column.info.name) != folded)
                continue;
            if (found)
                throw Errors::ambiguousColumn(name.object());
            found = &column;
        }
    }
    return found;
}

Binder::Found Binder::findColumn(const Ast::ObjectName &name)
{
    for (Scope *scope = m_scope; scope; scope = scope->outer)
        if (const ScopeColumn *column = findIn(*scope, name))
            return {column, scope};
    return {};
}

ExpressionPtr Binder::columnExpression(const ScopeColumn &column) const
{
    if (column.computed)
        return column.computed;
    return std::make_shared<const Expression>(
        Expression{column.info.type, column.info.nullable, Column{column.source, column.column}});
}

ExpressionPtr Binder::groupKey(Grouping &grouping, const ExpressionPtr &expression) const
{
    const Emitted wanted = emitExpression(*expression);
    for (std::size_t i = 0; i < grouping.keys.size(); ++i)
        if (emitExpression(*grouping.keys[i]) == wanted)
            return std::make_shared<const Expression>(Expression{
                expression->type, expression->nullable, Column{grouping.alias, 'g' + std::to_string(i)}});
    return nullptr;
}

ExpressionPtr Binder::bindNode(const Ast::ColumnReference &node)
{
    const Found found = findColumn(node.name);
    if (!found.column) {
        if (node.name.parts.size() > 1)
            throw Errors::unboundIdentifier(node.name.toString());
        throw Errors::invalidColumn(node.name.object());
    }
    auto expression = columnExpression(*found.column);
    if (!found.scope->grouping)
        return expression;
    if (auto key = groupKey(*found.scope->grouping, expression))
        return key;
    throw notGrouped(*found.column, *found.scope);
}

void Binder::addSource(ScopeSource source, Scope &scope)
{
    for (const ScopeSource &other : scope.sources) {
        const bool sameSchema =
            sameName(other.schema, source.schema) && sameName(other.database, source.database);
        if (sameName(other.name, source.name) && sameSchema)
            throw EngineError(
                1013, 16, 1,
                "The objects \"" + other.name + "\" and \"" + source.name +
                    "\" in the FROM clause have the same exposed names. Use correlation names to "
                    "distinguish them.",
                ErrorEffect::EndsBatch);
    }
    scope.sources.push_back(std::move(source));
}

} // namespace SampleServer
