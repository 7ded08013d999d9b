#include "Export/MSSQLScriptOrder.h"

#include "Export/MSSQLScriptKind.h"
#include "Export/MSSQLScriptStub.h"

#include <algorithm>

namespace {

/// Finds the cycles of a graph: two names have the same number if each can be reached from the other.
class ScriptCycles
{
public:
    ScriptCycles(const QHash<QString, KNScriptObject> &objects,
                 const MSSQLScriptOrder::Dependencies &dependencies)
    {
        MSSQLScriptOrder::Dependencies reversed;
        for (auto each = dependencies.begin(); each != dependencies.end(); ++each)
            reversed.insert(each.value(), each.key());
        QStringList finished;
        QSet<QString> visited;
        for (const QString &name : objects.keys())
            walk(name, dependencies, &visited, [&](const QString &done) { finished.append(done); });
        visited.clear();
        for (auto name = finished.crbegin(); name != finished.crend(); ++name) {
            ++m_count;
            walk(*name, reversed, &visited, [&](const QString &member) { m_cycles.insert(member, m_count); });
        }
    }

    bool holdsBoth(const QString &left, const QString &right) const
    {
        return m_cycles.value(left) == m_cycles.value(right);
    }

private:
    /// Calls `leave` for each name that is reached from the first one, the last reached first. Has a stack of
    /// its own: a chain of dependencies may be long.
    template <typename Leave>
    static void walk(const QString &first, const MSSQLScriptOrder::Dependencies &edges,
                     QSet<QString> *visited, const Leave &leave)
    {
        QList<std::pair<QString, QStringList>> stack;
        const auto enter = [&](const QString &name) {
            if (visited->contains(name))
                return;
            visited->insert(name);
            stack.append({name, edges.values(name)});
        };
        enter(first);
        while (!stack.isEmpty()) {
            if (stack.last().second.isEmpty())
                leave(stack.takeLast().first);
            else
                enter(QString(stack.last().second.takeLast()));
        }
    }

    QHash<QString, int> m_cycles;
    int m_count = 0;
};

} // namespace

MSSQLScriptOrder::MSSQLScriptOrder(const QList<KNScriptObject> &objects, const Dependencies &dependencies,
                                   const QSet<Reference> &bound)
    : m_bound(bound)
{
    for (const KNScriptObject &object : objects)
        m_objects.insert(object.displayName(), object);
    for (auto each = dependencies.begin(); each != dependencies.end(); ++each) {
        if (m_objects.contains(each.key()) && m_objects.contains(each.value()) && each.key() != each.value())
            m_dependencies.insert(each.key(), each.value());
    }
    dropDeferred();
    QList<KNScriptObject> ranked = objects;
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const KNScriptObject &left, const KNScriptObject &right) {
                         return MSSQLScriptKind::rankOf(left) < MSSQLScriptKind::rankOf(right);
                     });
    for (const KNScriptObject &object : std::as_const(ranked))
        visit(object);
}

/// Procedures may name missing objects, but a missing procedure makes the server complain.
void MSSQLScriptOrder::dropDeferred()
{
    const ScriptCycles cycles(m_objects, m_dependencies);
    Dependencies kept;
    for (auto each = m_dependencies.begin(); each != m_dependencies.end(); ++each) {
        const bool isDeferred = MSSQLScriptKind::hasDeferredNames(m_objects.value(each.key())) &&
                                !MSSQLScriptKind::isProcedure(m_objects.value(each.value())) &&
                                !m_bound.contains({each.key(), each.value()});
        if (!isDeferred || !cycles.holdsBoth(each.key(), each.value()))
            kept.insert(each.key(), each.value());
    }
    m_dependencies = kept;
}

void MSSQLScriptOrder::visit(const KNScriptObject &first)
{
    QList<std::pair<QString, QStringList>> stack; // a name, and what is still to be visited before it
    const auto enter = [&](const QString &name) {
        if (m_entered.contains(name) && !m_finished.contains(name)) {
            const Reference reference(stack.last().first, name);
            if (MSSQLScriptStub::isPossible(m_objects.value(name)) && !m_bound.contains(reference))
                m_late.insert(name);
            else
                m_unordered.append(reference);
        }
        if (m_entered.contains(name))
            return;
        m_entered.insert(name);
        QStringList needed = m_dependencies.values(name);
        std::sort(needed.begin(), needed.end(), std::greater<>());
        stack.append({name, needed});
    };
    enter(first.displayName());
    while (!stack.isEmpty()) {
        if (!stack.last().second.isEmpty()) {
            enter(QString(stack.last().second.takeLast()));
            continue;
        }
        const QString name = stack.takeLast().first;
        m_finished.insert(name);
        m_ordered.append(m_objects.value(name));
    }
}
