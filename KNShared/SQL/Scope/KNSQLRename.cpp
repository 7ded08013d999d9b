#include "SQL/Scope/KNSQLRename.h"

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLScopeParser.h"
#include "SQL/Scope/KNSQLStatements.h"

namespace {

using Role = KNSQLRole;

bool isLocalVariable(const KNSQLTokens &tokens, qsizetype index)
{
    const QStringView text = tokens.textAt(index);
    return tokens.at(index).kind == SQLTokenKind::Variable && text.size() > 1 && text[1] != text[0];
}

/// The name or variable that contains a position or ends there; -1 if there is none.
qsizetype nameAt(const KNSQLTokens &tokens, qsizetype caret)
{
    const qsizetype behind = tokens.countBefore(caret + 1);
    for (qsizetype index = behind - 1; index >= std::max<qsizetype>(0, behind - 2); --index) {
        if (tokens.at(index).end() >= caret &&
            (KNSQLName::isName(tokens, index) || isLocalVariable(tokens, index)))
            return index;
    }
    return -1;
}

KNRange rangeOf(const KNSQLTokens &tokens, qsizetype index)
{
    return {tokens.at(index).location, tokens.at(index).length};
}

/// The parameters that a called procedure gives their names to: "@a" in EXECUTE p @a = @b.
class CalledParameters
{
public:
    explicit CalledParameters(const KNSQLTokens &tokens)
        : m_tokens(tokens)
    {
    }

    /// Whether the token is one; called for each token of a batch in order.
    bool contains(qsizetype index)
    {
        const Role role = m_tokens.at(index).role;
        if (role == Role::Execute) {
            m_isInCall = true;
            m_hasRoutine = false;
        } else if (role != Role::None && role != Role::Value && role != Role::Output) {
            m_isInCall = false;
        } else if (KNSQLName::is(m_tokens, index, u';')) {
            m_isInCall = false;
        } else if (m_isInCall && !m_hasRoutine) {
            // EXECUTE @result = p, and EXECUTE @procedure
            const bool isResult =
                isLocalVariable(m_tokens, index) && KNSQLName::is(m_tokens, index + 1, u'=');
            m_hasRoutine = !isResult && !KNSQLName::is(m_tokens, index, u'=');
            return false;
        }
        return m_isInCall && isLocalVariable(m_tokens, index) && KNSQLName::is(m_tokens, index + 1, u'=');
    }

private:
    const KNSQLTokens &m_tokens;
    bool m_isInCall = false;
    bool m_hasRoutine = false;
};

KNSQLRename variableAt(const KNSQLTokens &tokens, qsizetype index)
{
    qsizetype begin = index;
    while (begin > 0 && !tokens.isBatchSeparator(begin - 1))
        --begin;
    KNSQLRename rename{KNSQLRename::Kind::Variable, tokens.textAt(index).toString(), {}, -1, {}};
    CalledParameters parameters(tokens);
    for (qsizetype at = begin; at < tokens.size() && !tokens.isBatchSeparator(at); ++at) {
        if (parameters.contains(at) || !isLocalVariable(tokens, at))
            continue;
        const QString name = tokens.textAt(at).toString();
        if (name.compare(rename.name, Qt::CaseInsensitive) != 0) {
            if (!rename.taken.contains(name, Qt::CaseInsensitive))
                rename.taken.append(name);
            continue;
        }
        if (at == index)
            rename.chosen = rename.places.size();
        rename.places.append(rangeOf(tokens, at));
    }
    return rename.chosen < 0 ? KNSQLRename() : rename;
}

KNSQLRename aliasAt(const KNSQLTokens &tokens, qsizetype index)
{
    const KNSQLStatement statement = KNSQLStatements::upTo(tokens, index + 1).statements.last();
    KNSQLScope scope;
    KNSQLScopeParser parser(tokens, statement, {statement.end, statement.end});
    parser.parse(&scope);
    KNSQLRename rename;
    rename.taken = parser.tableNames();
    const QList<KNSQLAliasUses> aliases = parser.aliases();
    for (const KNSQLAliasUses &alias : aliases) {
        const qsizetype chosen = alias.tokens.indexOf(index);
        if (chosen < 0) {
            rename.taken.append(alias.name);
            continue;
        }
        rename.kind = KNSQLRename::Kind::Alias;
        rename.name = alias.name;
        rename.chosen = chosen;
        for (const qsizetype token : alias.tokens)
            rename.places.append(rangeOf(tokens, token));
    }
    return rename.kind == KNSQLRename::Kind::None ? KNSQLRename() : rename;
}

} // namespace

KNSQLRename KNFindSQLRename(const KNSQLTokens &tokens, qsizetype caret)
{
    const qsizetype index = nameAt(tokens, caret);
    if (index < 0)
        return {};
    return isLocalVariable(tokens, index) ? variableAt(tokens, index) : aliasAt(tokens, index);
}

bool KNIsSQLVariable(const KNSQLTokens &tokens, const QString &name)
{
    KNSQLTokens read(tokens.dialect());
    read.setText(name);
    return read.size() == 1 && isLocalVariable(read, 0) && read.at(0).length == name.size();
}
