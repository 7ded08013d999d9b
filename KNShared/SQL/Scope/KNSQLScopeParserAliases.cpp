// The part of the parser that finds the uses of aliases.

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLScopeParser.h"

namespace {

constexpr qsizetype PartsOfMethod = 3; ///< alias, column and method

bool isSameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

/// Whether a name of several parts, or the target of a change, can begin with an alias here.
bool KNSQLScopeParser::mayUseAlias(qsizetype index) const
{
    if (!isName(index) || is(index - 1, u'.'))
        return false;
    if (index == m_changedToken)
        return true;
    if (!is(index + 1, u'.'))
        return false;
    const KNSQLName::Path path = KNSQLName::path(m_tokens, index, m_end);
    const bool isCall = is(path.end, u'(');
    const bool isMethod = isCall && path.parts.size() >= PartsOfMethod;
    return isMethod || (!isCall && !m_tableTokens.contains(index));
}

/// The token that declares the alias that a name refers to; -1 if it refers to none.
qsizetype KNSQLScopeParser::declarationOf(qsizetype index) const
{
    const QString name = KNSQLName::text(m_tokens, index);
    for (int at = queryOf(m_frameOf[static_cast<std::size_t>(index - m_begin)]); at >= 0;) {
        const Frame &query = m_frames[static_cast<std::size_t>(at)];
        for (const KNSQLSource &source : query.sources) {
            if (isSameName(source.visibleName(), name))
                return source.alias.isNull() ? -1 : source.aliasToken;
        }
        if (!query.seesOuter)
            return -1;
        at = query.parent < 0 ? -1 : queryOf(query.parent);
    }
    return isSameName(m_target.alias, name) ? m_target.aliasToken : -1;
}

QList<KNSQLAliasUses> KNSQLScopeParser::aliases() const
{
    QList<KNSQLAliasUses> aliases;
    for (const qsizetype token : m_aliasTokens)
        aliases.append({KNSQLName::text(m_tokens, token), {}});
    for (qsizetype index = m_begin; index < m_end; ++index) {
        qsizetype alias = m_aliasTokens.indexOf(index);
        if (alias < 0 && mayUseAlias(index))
            alias = m_aliasTokens.indexOf(declarationOf(index));
        if (alias >= 0)
            aliases[alias].tokens.append(index);
    }
    return aliases;
}

QStringList KNSQLScopeParser::tableNames() const
{
    QStringList names;
    for (const Frame &frame : m_frames) {
        for (const KNSQLSource &source : frame.sources) {
            if (source.alias.isNull() && !source.path.isEmpty())
                names.append(source.path.last());
        }
    }
    return names;
}
