#include "Autocomplete/KNNameReference.h"

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLTokens.h"

namespace {

bool isEqualName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// The token that touches a position and can be a name; -1 if there is none.
qsizetype nameTokenAt(const KNSQLTokens &tokens, qsizetype position)
{
    const qsizetype behind = tokens.countBefore(position + 1);
    for (qsizetype index = behind - 1; index >= 0 && index >= behind - 2; --index) {
        const SQLTokenKind kind = tokens.at(index).kind;
        const bool isName = kind == SQLTokenKind::Word || kind == SQLTokenKind::Variable ||
                            kind == SQLTokenKind::BracketedIdentifier ||
                            kind == SQLTokenKind::QuotedIdentifier;
        if (isName && position <= tokens.at(index).end())
            return index;
    }
    return -1;
}

class ReferenceFinder
{
public:
    using Found = std::optional<KNNameReference>;

    ReferenceFinder(const KNSQLTokens &tokens, qsizetype token, const KNNameReference::Catalog &catalog)
        : m_tokens(tokens)
        , m_token(token)
        , m_catalog(catalog)
        , m_begin(beginOfPath())
        , m_scope(KNSQLScopeOfName(tokens, m_begin))
        , m_columns(m_scope, catalog.get())
    {
    }

    Found find() const
    {
        if (m_tokens.at(m_token).kind == SQLTokenKind::Variable)
            return variable(m_tokens.textAt(m_token).toString());
        const KNSQLName::Path whole = KNSQLName::path(m_tokens, m_begin, m_tokens.size());
        const qsizetype parts = KNSQLName::path(m_tokens, m_begin, m_token + 1).parts.size();
        const bool isCall = KNSQLName::is(m_tokens, m_token + 1, u'(');
        if (isCall) {
            if (Found function = builtIn(whole.parts))
                return function;
        }
        if (!KNSQLName::isName(m_tokens, m_token) || whole.parts.isEmpty())
            return std::nullopt;
        const QStringList path = whole.parts.mid(0, parts);
        if (path.size() < whole.parts.size()) {
            // The name before a dot is a source of the statement, or belongs to the name of an object.
            const Found source = path.size() == 1 ? sourceNamed(path.first()) : std::nullopt;
            return source ? source : resolved(whole.parts);
        }
        return resolved(path);
    }

private:
    using Kind = KNNameReference::Kind;

    qsizetype beginOfPath() const
    {
        qsizetype begin = m_token;
        while (begin > 0 && KNSQLName::is(m_tokens, begin - 1, u'.')) {
            --begin;
            if (KNSQLName::isName(m_tokens, begin - 1))
                --begin;
        }
        return begin;
    }

    Found resolved(const QStringList &path) const
    {
        if (path.size() > 1) {
            const Found column = columnOf(path.mid(0, path.size() - 1), path.last());
            return column ? column : object(path);
        }
        const QString &name = path.first();
        if (m_scope.expected.testFlag(KNSQLExpected::Columns)) {
            if (Found column = columnOf({}, name))
                return column;
        }
        if (Found source = sourceNamed(name))
            return source;
        return object(path);
    }

    Found variable(const QString &name) const
    {
        for (auto table = m_scope.temporaryTables.crbegin(); table != m_scope.temporaryTables.crend();
             ++table) {
            if (isEqualName(table->path.value(0), name))
                return local(*table, name);
        }
        KNNameReference reference{.kind = Kind::Variable, .name = name};
        if (const auto type = typeOfArgument(name)) {
            reference.type = *type;
            return reference;
        }
        for (auto known = m_scope.variables.crbegin(); known != m_scope.variables.crend(); ++known) {
            if (!isEqualName(known->name, name))
                continue;
            reference.type = known->type;
            reference.location = known->location;
            return reference;
        }
        return std::nullopt;
    }

    /// The type of a parameter that is passed by name: EXEC procedure @name = value.
    std::optional<QString> typeOfArgument(const QString &name) const
    {
        if (m_scope.clause != KNSQLClause::Arguments || !KNSQLName::is(m_tokens, m_token + 1, u'='))
            return std::nullopt;
        const auto *const routine = m_columns.object(m_scope.routine);
        const auto members =
            routine && routine->entry ? routine->entry->entryChildren() : KNDatabaseAutocompleteEntry::List();
        for (const KNDatabaseAutocompleteEntry *member : members) {
            if (isEqualName(member->entryName(), name))
                return member->entryDetails();
        }
        return std::nullopt;
    }

    Found builtIn(const QStringList &path) const
    {
        const auto &signatures = m_tokens.dialect().signatures;
        const QString name = path.isEmpty() ? m_tokens.textAt(m_token).toString() : path.join(u'.');
        const auto found = signatures.constFind(name.toUpper());
        if (found == signatures.constEnd())
            return std::nullopt;
        return KNNameReference{.kind = Kind::Function, .name = name, .signature = *found};
    }

    Found local(const KNSQLSource &table, const QString &name) const
    {
        return KNNameReference{
            .kind = Kind::Local, .name = name, .columns = m_columns.of(table), .location = table.location};
    }

    /// A table of the statement, by its alias or its name.
    Found sourceNamed(const QString &name) const
    {
        for (const KNSQLSource &source : sources()) {
            if (isEqualName(source.visibleName(), name))
                return tableOf(source, name);
        }
        const KNSQLSource *const declared = declaredTable(name);
        return declared ? local(*declared, name) : std::nullopt;
    }

    Found tableOf(const KNSQLSource &source, const QString &name) const
    {
        if (const KNSQLSource *const declared =
                source.path.size() == 1 ? declaredTable(source.path.first()) : nullptr)
            return local(*declared, name);
        return source.path.isEmpty() || source.isResolved ? local(source, name) : object(source.path);
    }

    const KNSQLSource *declaredTable(const QString &name) const
    {
        for (const KNSQLSources *const tables : {&m_scope.ctes, &m_scope.temporaryTables}) {
            for (auto table = tables->crbegin(); table != tables->crend(); ++table) {
                if (isEqualName(table->path.value(0), name))
                    return &*table;
            }
        }
        return nullptr;
    }

    /// The statement's sources, inner ones first, and its target.
    KNSQLSources sources() const
    {
        KNSQLSources sources = m_scope.sources;
        const bool listsTarget = m_scope.clause == KNSQLClause::InsertColumns ||
                                 m_scope.clause == KNSQLClause::Columns ||
                                 m_scope.clause == KNSQLClause::Output;
        if (!m_scope.target.path.isEmpty())
            sources.insert(listsTarget ? 0 : sources.size(), m_scope.target);
        return sources;
    }

    /// Whether a column behind these names can belong to the source.
    bool isQualifiedBy(const KNSQLSource &source, const QStringList &qualifier) const
    {
        if (qualifier.isEmpty())
            return true;
        const bool isChanged = m_scope.clause == KNSQLClause::Output && qualifier.size() == 1 &&
                               m_tokens.dialect().changedRows.contains(qualifier.last(), Qt::CaseInsensitive);
        if (isChanged)
            return source.path == m_scope.target.path;
        if (qualifier.size() == 1)
            return isEqualName(source.visibleName(), qualifier.first());
        const qsizetype offset = source.path.size() - qualifier.size();
        for (qsizetype index = 0; index < qualifier.size(); ++index) {
            if (!source.alias.isNull() || offset < 0 ||
                !isEqualName(source.path[offset + index], qualifier[index]))
                return false;
        }
        return true;
    }

    Found columnOf(const QStringList &qualifier, const QString &name) const
    {
        for (const KNSQLSource &source : sources()) {
            if (!isQualifiedBy(source, qualifier))
                continue;
            const QList<KNSourceColumn> columns = m_columns.of(source);
            for (const KNSourceColumn &column : columns) {
                if (!isEqualName(column.name, name))
                    continue;
                Found reference = tableOf(source, name);
                reference->kind = Kind::Column;
                reference->name = column.name;
                reference->source = source.path.isEmpty() ? source.alias : source.path.last();
                reference->columns = {column};
                return reference;
            }
        }
        return std::nullopt;
    }

    Found object(const QStringList &path) const
    {
        KNNameReference reference{.kind = Kind::Object, .name = path.last(), .path = path};
        if (m_catalog) {
            const KNCompletionCatalog::Found found = m_catalog->findOnServer(path);
            reference.object = found.object;
            reference.owners = {m_catalog, found.owner};
        }
        // The schema makes the name clear to the server, too.
        if (reference.object && path.size() == 1)
            reference.path.prepend(reference.object->schema);
        return reference;
    }

    const KNSQLTokens &m_tokens;
    const qsizetype m_token;
    const KNNameReference::Catalog m_catalog;
    const qsizetype m_begin;
    const KNSQLScope m_scope;
    const KNSourceColumns m_columns;
};

} // namespace

std::optional<KNNameReference> KNFindNameReference(const KNSQLTokens &tokens, qsizetype position,
                                                   const KNNameReference::Catalog &catalog)
{
    const qsizetype token = tokens.isInComment(position) ? -1 : nameTokenAt(tokens, position);
    return token < 0 ? std::nullopt : ReferenceFinder(tokens, token, catalog).find();
}
