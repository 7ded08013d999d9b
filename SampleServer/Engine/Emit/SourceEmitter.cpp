#include "Engine/Emit/SourceEmitter.h"
#include "Engine/Catalog/Catalog.h"
#include "Engine/Emit/QueryEmitter.h"
#include "Engine/Storage/RowProvider.h"

namespace SampleServer {

using namespace Bound;

void SourceEmitter::write(const Source &source, bool parenthesize)
{
    const auto *joined = std::get_if<JoinedSources>(&source.node);
    if (joined && parenthesize)
        m_text.text("(");
    std::visit([&](const auto &node) { emit(node, source.alias); }, source.node);
    if (joined && parenthesize)
        m_text.text(")");
}

void SourceEmitter::emit(const TableScan &scan, const std::string &alias)
{
    m_text.text(scan.schema + '.' + scan.table->physicalName() + " AS " + alias);
}

void SourceEmitter::emit(const DerivedQuery &derived, const std::string &alias)
{
    m_text.text("(");
    m_queries.query(*derived.query);
    m_text.text(") AS " + alias);
}

void SourceEmitter::emit(const ValueRows &values, const std::string &alias)
{
    m_text.text("(VALUES ");
    const char *separator = "(";
    for (const auto &row : values.rows) {
        m_text.text(separator);
        m_queries.expressions().writeList(row);
        separator = "), (";
    }
    m_text.text(")) AS " + alias);
}

void SourceEmitter::emit(const GeneratedRows &rows, const std::string &alias)
{
    m_text.text("generate_rows(");
    m_queries.expressions().write(*rows.count);
    m_text.text(") AS " + alias);
}

void SourceEmitter::emit(const ProvidedRows &rows, const std::string &alias)
{
    m_text.text(rows.provider->isIndexed() ? "indexed_rows(" : "rows(");
    EmittedParameter provider;
    provider.provider = rows.provider.get();
    m_text.parameter(std::move(provider));
    for (const ExpressionPtr &argument : rows.arguments) {
        m_text.text(", ");
        m_queries.expressions().write(*argument);
    }
    m_text.text(") AS " + alias);
}

void SourceEmitter::emit(const RecursiveRows &rows, const std::string &alias)
{
    std::string names;
    for (std::size_t i = 0; i < rows.anchor->columns.size(); ++i)
        names += 'c' + std::to_string(i + 1) + ", ";
    m_text.text("(WITH RECURSIVE " + rows.name + '(' + names + "depth) AS (SELECT " + names + "0 FROM (");
    m_queries.query(*rows.anchor);
    m_text.text(")");
    for (const QueryPtr &step : rows.steps) {
        m_text.text(" UNION ALL ");
        m_queries.query(*step);
    }
    m_text.text(") SELECT * FROM " + rows.name + ") AS " + alias);
}

void SourceEmitter::emit(const RecursiveReference &reference, const std::string &alias)
{
    m_text.text(reference.name + " AS " + alias);
}

void SourceEmitter::emit(const JoinedSources &join, const std::string &)
{
    static constexpr const char *kinds[] = {" JOIN ", " LEFT JOIN ", " RIGHT JOIN ", " FULL JOIN ",
                                            " JOIN ", " JOIN ",      " LEFT JOIN "};
    write(*join.left, false);
    m_text.text(kinds[static_cast<int>(join.kind)]);
    write(*join.right, true);
    if (join.condition) {
        m_text.text(" ON ");
        m_queries.expressions().write(*join.condition);
    } else if (join.kind == Ast::JoinKind::OuterApply) {
        m_text.text(" ON 1");
    }
}

} // namespace SampleServer
