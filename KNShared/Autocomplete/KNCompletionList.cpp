#include "Autocomplete/KNCompletionList.h"

#include "Autocomplete/KNCompletionCandidates.h"
#include "Autocomplete/KNCompletionObjects.h"
#include "Autocomplete/KNJoinConditions.h"
#include "Autocomplete/KNSourceColumns.h"
#include "Foundation/KNFormat.h"
#include "SQL/Scope/KNSQLTokens.h"

#include <algorithm>

namespace {

using Item = KNCompletionItem;
using Kind = KNCompletionItem::Kind;
using Group = KNCompletionCandidates::Group;
using Object = KNCompletionCatalog::Object;
using Expected = KNSQLExpected;

bool isSame(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

class List
{
public:
    explicit List(const KNCompletionRequest &request)
        : m_request(request)
        , m_scope(request.scope)
        , m_catalog(request.catalog)
        , m_columns(request.scope, request.catalog)
        , m_candidates(request.tokens, request.scope.replaceTo, request.scope.prefix)
    {
    }

    QList<Item> complete()
    {
        if (!m_scope.isCompletable)
            return {};
        if (m_scope.qualifier.isEmpty())
            addUnqualified();
        else
            addQualified();
        return m_candidates.best(m_request.limit);
    }

private:
    bool expects(KNSQLExpected kind) const { return m_scope.expected.testFlag(kind); }
    QString quoted(const QString &name) const
    {
        return m_request.quotedName ? m_request.quotedName(name) : name;
    }

    void addUnqualified()
    {
        if (m_scope.isBehindStar || m_scope.isInsertList)
            addColumnLists();
        if (expects(Expected::JoinConditions)) {
            const auto conditions = KNJoinConditions(m_scope, m_columns, m_catalog, m_request.quotedName);
            for (const QString &condition : conditions)
                add(Group::Conditions, Kind::JoinCondition, condition, condition);
        }
        if (expects(Expected::Columns))
            addColumns();
        if (expects(Expected::Columns) || expects(Expected::Aliases))
            addSources();
        if (expects(Expected::Sources))
            addDeclaredTables();
        addObjects(m_catalog, QString());
        if (expects(Expected::Parameters))
            addParameters();
        addPlainNames();
        if (m_scope.startsStatement)
            addSnippets();
    }

    void addSnippets()
    {
        for (const KNSnippet &snippet : m_request.snippets)
            add(Group::Snippets, Kind::Snippet, snippet.name, snippet.text, {}, snippet.title);
    }

    void add(Group group, Kind kind, const QString &name, const QString &text, const QString &parent = {},
             const QString &type = {})
    {
        if (m_candidates.suits(name))
            m_candidates.add(group, {name, text, parent, type, kind});
    }

    /// A column of the target of INSERT and others, where only those can stand.
    bool listsTarget() const
    {
        return m_scope.clause == KNSQLClause::InsertColumns || m_scope.clause == KNSQLClause::Columns;
    }

    void addColumns()
    {
        if (listsTarget() || m_scope.clause == KNSQLClause::Output) {
            if (listsTarget())
                addColumnsOf(m_scope.target, Group::Near, false);
            for (const QString &rows : m_scope.clause == KNSQLClause::Output
                                           ? m_request.tokens.dialect().changedRows
                                           : QStringList())
                add(Group::Near, Kind::Source, rows, rows);
            return;
        }
        if (m_scope.clause == KNSQLClause::OrderBy) {
            for (const KNSQLOutput &output : m_scope.outputs) {
                if (!output.isStar)
                    add(Group::Near, Kind::Column, output.name, quoted(output.name));
            }
        }
        for (qsizetype index = 0; index < m_scope.sources.size(); ++index)
            addColumnsOf(m_scope.sources[index], index < m_scope.innerSources ? Group::Near : Group::Outer,
                         true);
        if (m_scope.sources.isEmpty() && m_catalog && !m_scope.prefix.isEmpty()) {
            for (const KNDatabaseAutocompleteEntry *column : m_catalog->columns)
                addAnyColumn(column->entryName());
        }
    }

    void addAnyColumn(const QString &name)
    {
        if (m_candidates.suits(name))
            m_candidates.add(Group::Outer, {name, quoted(name), {}, {}, Kind::Column});
    }

    void addColumnsOf(const KNSQLSource &source, Group group, bool isQualifiedIfAmbiguous)
    {
        const QString parent = source.visibleName();
        const QList<KNSourceColumn> columns = m_columns.of(source);
        for (const KNSourceColumn &column : columns) {
            if (!m_candidates.suits(column.name) ||
                m_scope.usedColumns.contains(column.name, Qt::CaseInsensitive))
                continue;
            const bool isAmbiguous =
                isQualifiedIfAmbiguous && !parent.isNull() && isAmbiguousName(column.name);
            const QString name = quoted(column.name);
            add(group, Kind::Column, column.name, isAmbiguous ? quoted(parent) + u'.' + name : name, parent,
                column.type);
        }
    }

    bool isAmbiguousName(const QString &name)
    {
        if (m_scope.innerSources < 2)
            return false;
        if (m_counts.isEmpty()) {
            for (qsizetype index = 0; index < m_scope.innerSources; ++index) {
                for (const KNSourceColumn &column : m_columns.of(m_scope.sources[index]))
                    ++m_counts[column.name.toLower()];
            }
        }
        return m_counts.value(name.toLower()) > 1;
    }

    /// The names by which the statement's sources are known.
    void addSources()
    {
        for (const KNSQLSource &source : m_scope.sources) {
            const QString name = source.visibleName();
            if (!name.isEmpty() && !listsTarget())
                add(Group::Names, Kind::Source, name, quoted(name),
                    source.alias.isNull() ? QString() : source.path.join(u'.'));
        }
    }

    void addDeclaredTables()
    {
        for (const KNSQLSources *const tables : {&m_scope.ctes, &m_scope.temporaryTables}) {
            for (const KNSQLSource &table : *tables)
                add(Group::Names, Kind::Source, table.path.first(), table.path.first());
        }
    }

    /// The objects of a catalog; of one schema unless that is null.
    void addObjects(const KNCompletionCatalog *catalog, const QString &schema)
    {
        if (!catalog || !m_scope.expected)
            return;
        const QList<QStringList> related = m_scope.isJoinTarget && catalog == m_catalog
                                               ? KNRelatedTables(m_scope, *catalog, m_columns)
                                               : QList<QStringList>();
        KNAddObjectCompletions(m_request, *catalog, schema, related, &m_candidates);
    }

    /// The parameters of the procedure that is called.
    void addParameters()
    {
        const Object *const routine = m_columns.object(m_scope.routine);
        if (!routine || !routine->entry)
            return;
        for (const KNDatabaseAutocompleteEntry *child : routine->entry->entryChildren()) {
            if (child->entryCompletionType() == KNDatabaseAutocompleteEntry::Parameter)
                add(Group::Near, Kind::Parameter, child->entryName(),
                    child->entryName() + QStringLiteral(" = "), routine->name, child->entryDetails());
        }
    }

    void addPlainNames()
    {
        const KNSQLDialect &dialect = m_request.tokens.dialect();
        if (expects(Expected::Variables)) {
            for (const KNSQLVariable &variable : m_scope.variables)
                add(Group::Variables, Kind::Variable, variable.name, variable.name, {}, variable.type);
        }
        if (expects(Expected::Types)) {
            for (const QString &type : dialect.types)
                add(Group::Related, Kind::Type, typedCase(type), typedCase(type));
        }
        if (expects(Expected::Functions)) {
            for (const QString &function : dialect.functions)
                add(Group::Functions, Kind::Function, function, function);
        }
        if (m_catalog && (m_scope.expected & (KNSQLExpectations(Expected::Sources) | Expected::Procedures |
                                              Expected::Types | Expected::Modules | Expected::Objects))) {
            for (const QString &schema : m_catalog->schemas)
                add(Group::Variables, Kind::Schema, schema, quoted(schema));
        }
        if (m_catalog && (expects(Expected::Databases) || expects(Expected::Sources))) {
            for (const QString &database : m_catalog->databases)
                add(expects(Expected::Databases) ? Group::Objects : Group::Functions, Kind::Database,
                    database, quoted(database));
        }
        for (const QString &word : m_scope.words)
            add(Group::Words, Kind::Keyword, typedCase(word), typedCase(word));
    }

    /// Keywords follow the case of what was typed.
    QString typedCase(const QString &word) const
    {
        const QString &typed = m_scope.prefix;
        const bool isLower = !typed.isEmpty() && typed == typed.toLower() && typed != typed.toUpper();
        return isLower ? word.toLower() : word;
    }

    void addQualified()
    {
        const QString &last = m_scope.qualifier.last();
        if (m_scope.qualifier.size() == 1)
            addColumnsOfSource(last);
        if (m_scope.clause == KNSQLClause::Output && m_scope.qualifier.size() == 1 &&
            m_request.tokens.dialect().changedRows.contains(last, Qt::CaseInsensitive))
            addColumnsOf(m_scope.target, Group::Near, false);
        if (!m_catalog)
            return;
        if (m_scope.qualifier.size() == 1) {
            if (m_catalog->hasSchema(last))
                addObjects(m_catalog, last);
            addSchemasOf(last);
        } else if (m_scope.qualifier.size() == 2) {
            const auto other =
                m_catalog->otherDatabase ? m_catalog->otherDatabase(m_scope.qualifier.first()) : nullptr;
            if (other)
                addObjects(other.get(), last.isEmpty() ? other->defaultSchema : last);
            addColumnsOfPath();
        } else {
            addColumnsOfPath();
        }
    }

    void addColumnsOfSource(const QString &name)
    {
        for (qsizetype index = 0; index < m_scope.sources.size(); ++index) {
            if (!isSame(m_scope.sources[index].visibleName(), name))
                continue;
            addColumnsOf(m_scope.sources[index], Group::Near, false);
            return; // inner names hide outer ones
        }
    }

    /// The columns of a source named with its schema.
    void addColumnsOfPath()
    {
        for (const KNSQLSource &source : m_scope.sources) {
            if (source.alias.isNull() && source.path.size() >= 2 &&
                isSame(source.path.last(), m_scope.qualifier.last()) &&
                isSame(source.path[source.path.size() - 2], m_scope.qualifier[m_scope.qualifier.size() - 2]))
                return addColumnsOf(source, Group::Near, false);
        }
    }

    void addSchemasOf(const QString &database)
    {
        if (!m_catalog->databases.contains(database, Qt::CaseInsensitive) || !m_catalog->otherDatabase)
            return;
        const auto other = m_catalog->otherDatabase(database);
        for (const QString &schema : other ? other->schemas : QStringList())
            add(Group::Objects, Kind::Schema, schema, quoted(schema), database);
    }

    /// All columns instead of a star, and the lists of an INSERT.
    void addColumnLists()
    {
        QStringList names;
        if (m_scope.isInsertList) {
            for (const KNSourceColumn &column : m_columns.of(m_scope.target))
                names.append(quoted(column.name));
            if (names.isEmpty())
                return;
            const QString list = names.join(QStringLiteral(", "));
            const QString values =
                QStringList(names.size(), QStringLiteral("NULL")).join(QStringLiteral(", "));
            return add(Group::Conditions, Kind::Columns, QStringLiteral("(columns) VALUES (...)"),
                       KNFormat("(%@)\nVALUES (%@)", list, values));
        }
        for (qsizetype index = 0; index < m_scope.innerSources; ++index) {
            const KNSQLSource &source = m_scope.sources[index];
            const QString prefix = m_scope.innerSources > 1 ? quoted(source.visibleName()) + u'.' : QString();
            for (const KNSourceColumn &column : m_columns.of(source))
                names.append(prefix + quoted(column.name));
        }
        if (!names.isEmpty())
            add(Group::Conditions, Kind::Columns, QStringLiteral("All columns"),
                names.join(QStringLiteral(", ")));
    }

    const KNCompletionRequest &m_request;
    const KNSQLScope &m_scope;
    const KNCompletionCatalog *const m_catalog;
    const KNSourceColumns m_columns;
    KNCompletionCandidates m_candidates;
    QHash<QString, int> m_counts; ///< of columns in the sources of the query
};

} // namespace

QList<KNCompletionItem> KNCompletions(const KNCompletionRequest &request)
{
    return List(request).complete();
}
