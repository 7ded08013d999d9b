#include "Autocomplete/KNCompletionList.h"

#include "Autocomplete/KNCompletionCandidates.h"
#include "Autocomplete/KNCompletionColumns.h"
#include "Autocomplete/KNCompletionObjects.h"
#include "Autocomplete/KNJoinConditions.h"
#include "Autocomplete/KNSourceColumns.h"
#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLTokens.h"

#include <algorithm>

namespace {

using Item = KNCompletionItem;
using Kind = KNCompletionItem::Kind;
using Group = KNCompletionCandidates::Group;
using Object = KNCompletionCatalog::Object;
using Expected = KNSQLExpected;

class List
{
public:
    explicit List(const KNCompletionRequest &request)
        : m_request(request)
        , m_scope(request.scope)
        , m_catalog(request.catalog)
        , m_sources(request.scope, request.catalog)
        , m_candidates(request.tokens, request.scope.replaceTo, request.scope.prefix)
        , m_columns(request, m_sources, m_candidates)
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
            m_columns.addLists();
        if (expects(Expected::JoinConditions)) {
            const auto conditions = KNJoinConditions(m_scope, m_sources, m_catalog, m_request.quotedName);
            for (const QString &condition : conditions)
                add(Group::Conditions, Kind::JoinCondition, condition, condition);
        }
        if (expects(Expected::Columns))
            m_columns.add();
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

    /// The names by which the statement's sources are known.
    void addSources()
    {
        for (const KNSQLSource &source : m_scope.sources) {
            const QString name = source.visibleName();
            if (!name.isEmpty() && !m_columns.listsTarget())
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
                                               ? KNRelatedTables(m_scope, *catalog, m_sources)
                                               : QList<QStringList>();
        KNAddObjectCompletions(m_request, *catalog, schema, related, &m_candidates);
    }

    /// The parameters of the procedure that is called.
    void addParameters()
    {
        const Object *const routine = m_sources.object(m_scope.routine);
        if (!routine || !routine->entry)
            return;
        const QStringList passed = passedParameters();
        for (const KNDatabaseAutocompleteEntry *child : routine->entry->entryChildren()) {
            if (child->entryCompletionType() == KNDatabaseAutocompleteEntry::Parameter &&
                !passed.contains(child->entryName(), Qt::CaseInsensitive))
                add(Group::Near, Kind::Parameter, child->entryName(),
                    child->entryName() + QStringLiteral(" = "), routine->name, child->entryDetails());
        }
    }

    /// Those that are passed by name before the caret.
    QStringList passedParameters() const
    {
        constexpr qsizetype MostTokens = 5'000;
        const KNSQLTokens &tokens = m_request.tokens;
        QStringList names;
        const qsizetype behind = tokens.countBefore(m_scope.replaceFrom);
        const qsizetype first = std::max<qsizetype>(0, behind - MostTokens);
        for (qsizetype index = behind - 1; index >= first; --index) {
            if (tokens.at(index).role == KNSQLRole::Execute)
                break;
            if (tokens.at(index).kind == SQLTokenKind::Variable && KNSQLName::is(tokens, index + 1, u'='))
                names.append(tokens.textAt(index).toString());
        }
        return names;
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
            for (const QString &schema : m_catalog->systemSchemas)
                add(Group::Functions, Kind::Schema, schema, quoted(schema));
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
            m_columns.addOfSource(last);
        if (m_scope.clause == KNSQLClause::Output && m_scope.qualifier.size() == 1 &&
            m_request.tokens.dialect().changedRows.contains(last, Qt::CaseInsensitive))
            m_columns.addOf(m_scope.target, Group::Near, false);
        if (!m_catalog)
            return;
        if (m_scope.qualifier.size() == 1) {
            addObjectsOfSchema(m_catalog, last);
            addSchemasOf(last);
        } else if (m_scope.qualifier.size() == 2) {
            const auto other =
                m_catalog->otherDatabase ? m_catalog->otherDatabase(m_scope.qualifier.first()) : nullptr;
            if (other)
                addObjectsOfSchema(other.get(), last.isEmpty() ? other->defaultSchema : last);
            m_columns.addOfPath();
        } else {
            m_columns.addOfPath();
        }
    }

    void addObjectsOfSchema(const KNCompletionCatalog *catalog, const QString &schema)
    {
        if (!catalog->isSystemSchema(schema))
            addObjects(catalog, schema);
        else if (const auto system = catalog->systemObjects())
            addObjects(system.get(), schema);
    }

    void addSchemasOf(const QString &database)
    {
        if (!m_catalog->databases.contains(database, Qt::CaseInsensitive) || !m_catalog->otherDatabase)
            return;
        const auto other = m_catalog->otherDatabase(database);
        for (const QString &schema : other ? other->schemas : QStringList())
            add(Group::Objects, Kind::Schema, schema, quoted(schema), database);
    }

    const KNCompletionRequest &m_request;
    const KNSQLScope &m_scope;
    const KNCompletionCatalog *const m_catalog;
    const KNSourceColumns m_sources;
    KNCompletionCandidates m_candidates;
    KNCompletionColumns m_columns;
};

} // namespace

QList<KNCompletionItem> KNCompletions(const KNCompletionRequest &request)
{
    return List(request).complete();
}
