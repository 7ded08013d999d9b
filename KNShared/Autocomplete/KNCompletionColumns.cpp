#include "Autocomplete/KNCompletionColumns.h"

#include "Foundation/KNFormat.h"
#include "SQL/Scope/KNSQLTokens.h"

namespace {

bool isSameColumnName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

bool KNCompletionColumns::listsTarget() const
{
    return m_scope.clause == KNSQLClause::InsertColumns || m_scope.clause == KNSQLClause::Columns ||
           m_scope.isAssigned;
}

void KNCompletionColumns::add()
{
    if (listsTarget() || m_scope.clause == KNSQLClause::Output) {
        if (listsTarget())
            addOf(m_scope.target, Group::Near, false);
        for (const QString &rows :
             m_scope.clause == KNSQLClause::Output ? m_request.tokens.dialect().changedRows : QStringList())
            addItem(Group::Near, Kind::Source, rows, rows);
        return;
    }
    if (m_scope.clause == KNSQLClause::OrderBy) {
        for (const KNSQLOutput &output : m_scope.outputs) {
            if (!output.isStar)
                addItem(Group::Near, Kind::Column, output.name, quoted(output.name));
        }
    }
    for (qsizetype index = 0; index < m_scope.sources.size(); ++index)
        addOf(m_scope.sources[index], index < m_scope.innerSources ? Group::Near : Group::Outer, true);
    if (m_scope.sources.isEmpty() && m_request.catalog && !m_scope.prefix.isEmpty()) {
        for (const KNDatabaseAutocompleteEntry *column : m_request.catalog->columns) {
            if (m_candidates.suits(column->entryName())) // quotes suitable names only
                addItem(Group::Outer, Kind::Column, column->entryName(), quoted(column->entryName()));
        }
    }
}

void KNCompletionColumns::addItem(Group group, KNCompletionItem::Kind kind, const QString &name,
                                  const QString &text)
{
    if (m_candidates.suits(name))
        m_candidates.add(group, {name, text, {}, {}, kind});
}

void KNCompletionColumns::addOf(const KNSQLSource &source, Group group, bool isQualifiedIfAmbiguous)
{
    const QString parent = source.visibleName();
    const QList<KNSourceColumn> columns = m_sources.of(source);
    for (const KNSourceColumn &column : columns) {
        if (!m_candidates.suits(column.name) ||
            m_scope.usedColumns.contains(column.name, Qt::CaseInsensitive))
            continue;
        const bool needsParent = isQualifiedIfAmbiguous && !parent.isNull() && isAmbiguous(column.name);
        const QString name = quoted(column.name);
        m_candidates.add(group, {column.name, needsParent ? quoted(parent) + u'.' + name : name, parent,
                                 column.type, Kind::Column, column.isPrimaryKey});
    }
}

bool KNCompletionColumns::isAmbiguous(const QString &name)
{
    if (m_scope.innerSources < 2)
        return false;
    if (m_counts.isEmpty()) {
        for (qsizetype index = 0; index < m_scope.innerSources; ++index) {
            for (const KNSourceColumn &column : m_sources.of(m_scope.sources[index]))
                ++m_counts[column.name.toLower()];
        }
    }
    return m_counts.value(name.toLower()) > 1;
}

void KNCompletionColumns::addOfSource(const QString &name)
{
    for (qsizetype index = 0; index < m_scope.sources.size(); ++index) {
        if (!isSameColumnName(m_scope.sources[index].visibleName(), name))
            continue;
        addOf(m_scope.sources[index], Group::Near, false);
        return; // inner names hide outer ones
    }
}

void KNCompletionColumns::addOfPath()
{
    for (const KNSQLSource &source : m_scope.sources) {
        if (source.alias.isNull() && source.path.size() >= 2 &&
            isSameColumnName(source.path.last(), m_scope.qualifier.last()) &&
            isSameColumnName(source.path[source.path.size() - 2],
                             m_scope.qualifier[m_scope.qualifier.size() - 2]))
            return addOf(source, Group::Near, false);
    }
}

void KNCompletionColumns::addLists()
{
    QStringList names;
    if (m_scope.isInsertList) {
        for (const KNSourceColumn &column : m_sources.of(m_scope.target))
            names.append(quoted(column.name));
        if (names.isEmpty())
            return;
        const QString list = names.join(QStringLiteral(", "));
        const QString values = QStringList(names.size(), QStringLiteral("NULL")).join(QStringLiteral(", "));
        return addItem(Group::Conditions, Kind::Columns, QStringLiteral("(columns) VALUES (...)"),
                       KNFormat("(%@)\nVALUES (%@)", list, values));
    }
    for (qsizetype index = 0; index < m_scope.innerSources; ++index) {
        const KNSQLSource &source = m_scope.sources[index];
        const QString prefix = m_scope.innerSources > 1 ? quoted(source.visibleName()) + u'.' : QString();
        for (const KNSourceColumn &column : m_sources.of(source))
            names.append(prefix + quoted(column.name));
    }
    if (!names.isEmpty())
        addItem(Group::Conditions, Kind::Columns, QStringLiteral("All columns"),
                names.join(QStringLiteral(", ")));
}
