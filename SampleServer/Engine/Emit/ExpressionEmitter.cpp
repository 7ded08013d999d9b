#include "Engine/Emit/ExpressionEmitter.h"
#include "Engine/Emit/QueryEmitter.h"

namespace SampleServer {

using namespace Bound;

void ExpressionEmitter::write(const Expression &expression)
{
    std::visit([&](const auto &node) { emit(node, expression); }, expression.node);
}

void ExpressionEmitter::emit(const Column &node, const Expression &expression)
{
    if (!m_text.isOutside(node.source))
        return m_text.text(node.source + '.' + node.name);
    m_text.argument(node, expression);
}

void ExpressionEmitter::emit(const Constant &node, const Expression &expression)
{
    m_text.parameter({&node, expression.type});
}

void ExpressionEmitter::emit(const WindowCall &node, const Expression &)
{
    m_text.text(node.function + '(');
    for (const ExpressionPtr &argument : node.arguments) {
        m_text.text(argument == node.arguments.front() ? "" : ", ");
        write(*argument);
        m_text.text(collationOf(argument->type));
    }
    m_text.text(node.arguments.empty() && node.function == "count" ? "*) OVER (" : ") OVER (");
    const char *separator = "PARTITION BY ";
    for (const ExpressionPtr &key : node.partition) {
        m_text.text(separator);
        write(*key);
        m_text.text(collationOf(key->type));
        separator = ", ";
    }
    separator = node.partition.empty() ? "ORDER BY " : " ORDER BY ";
    for (const OrderItem &item : node.order) {
        m_text.text(separator);
        writeOrder(*item.expression, item);
        separator = ", ";
    }
    m_text.text((node.frame.empty() ? "" : ' ' + node.frame) + ')');
}

void ExpressionEmitter::emit(const XmlText &node, const Expression &)
{
    m_text.text("(SELECT tsql_xml(");
    EmittedParameter shape;
    shape.shape = node.shape.get();
    m_text.parameter(std::move(shape));
    for (std::size_t i = 0; i < node.query->columns.size(); ++i)
        m_text.text(", c" + std::to_string(i + 1));
    m_text.text(") FROM (");
    m_queries.query(*node.query);
    m_text.text("))");
}

void ExpressionEmitter::emit(const Call &node, const Expression &)
{
    m_text.text("tsql(");
    m_text.parameter({nullptr, {}, &node});
    writeLeaves(node);
    m_text.text(")");
}

void ExpressionEmitter::emit(const Comparison &node, const Expression &)
{
    static constexpr const char *operators[] = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
    m_text.text("(");
    write(*node.left);
    m_text.text(collationOf(node.left->type) + operators[static_cast<int>(node.op)]);
    write(*node.right);
    m_text.text(")");
}

void ExpressionEmitter::emit(const Logical &node, const Expression &)
{
    m_text.text("(");
    writeOperands(node);
    m_text.text(")");
}

void ExpressionEmitter::emit(const Not &node, const Expression &)
{
    m_text.text("(NOT ");
    write(*node.operand);
    m_text.text(")");
}

void ExpressionEmitter::emit(const IsNull &node, const Expression &)
{
    m_text.text("(");
    write(*node.operand);
    m_text.text(node.negated ? " IS NOT NULL)" : " IS NULL)");
}

void ExpressionEmitter::emit(const In &node, const Expression &)
{
    m_text.text("(");
    write(*node.operand);
    m_text.text(collationOf(node.operand->type) + " IN (");
    writeList(node.list);
    m_text.text("))");
}

void ExpressionEmitter::emit(const InQuery &node, const Expression &)
{
    m_text.text("(");
    write(*node.operand);
    m_text.text(collationOf(node.operand->type) + " IN (");
    m_queries.query(*node.query);
    m_text.text("))");
}

void ExpressionEmitter::emit(const Case &node, const Expression &)
{
    m_text.text("CASE");
    for (const auto &[when, then] : node.branches) {
        m_text.text(" WHEN ");
        write(*when);
        m_text.text(" THEN ");
        write(*then);
    }
    m_text.text(" ELSE ");
    write(*node.otherwise);
    m_text.text(" END");
}

void ExpressionEmitter::emit(const Coalesce &node, const Expression &)
{
    m_text.text("coalesce(");
    writeList(node.arguments);
    m_text.text(")");
}

void ExpressionEmitter::emit(const Exists &node, const Expression &)
{
    m_text.text("EXISTS (");
    m_queries.query(*node.query);
    m_text.text(")");
}

void ExpressionEmitter::emit(const ScalarQuery &node, const Expression &)
{
    m_text.text("(SELECT tsql_single(c1) FROM (");
    m_queries.query(*node.query);
    m_text.text("))");
}

void ExpressionEmitter::writeLeaves(const Call &call)
{
    for (const ExpressionPtr &argument : call.arguments) {
        if (isLeaf(call, *argument)) {
            m_text.text(", ");
            write(*argument);
        } else if (const auto *inner = std::get_if<Call>(&argument->node)) {
            writeLeaves(*inner);
        }
    }
}

/// Writes a AND b AND c without parentheses, which would take space on SQLite's parser stack.
void ExpressionEmitter::writeOperands(const Logical &node)
{
    const auto *left = std::get_if<Logical>(&node.left->node);
    if (left && left->isAnd == node.isAnd)
        writeOperands(*left);
    else
        write(*node.left);
    m_text.text(node.isAnd ? " AND " : " OR ");
    write(*node.right);
}

void ExpressionEmitter::writeList(const std::vector<ExpressionPtr> &items)
{
    const char *separator = "";
    for (const ExpressionPtr &item : items) {
        m_text.text(separator);
        write(*item);
        separator = ", ";
    }
}

void ExpressionEmitter::writeOrder(const Expression &key, const OrderItem &item)
{
    write(key);
    m_text.text(collationOf(key.type) + (item.descending ? " DESC" : ""));
}

} // namespace SampleServer
