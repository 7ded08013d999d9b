#include "SQL/Scope/KNSQLDeclarations.h"

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLSelectItem.h"

namespace {

using Role = KNSQLRole;

/// Whether the statement declares variables: DECLARE, or the header of a procedure or function.
bool declares(const KNSQLTokens &tokens, const KNSQLStatement &statement)
{
    if (statement.lead == Role::Declare)
        return true;
    if (statement.lead != Role::Create && statement.lead != Role::Alter)
        return false;
    for (qsizetype at = statement.begin; at < std::min(statement.begin + 4, statement.end); ++at) {
        if (tokens.at(at).role == Role::Module)
            return true;
    }
    return false;
}

} // namespace

void KNSQLDeclarations::addVariables(const KNSQLTokens &tokens, const KNSQLStatement &statement,
                                     qsizetype end, QList<KNSQLVariable> *variables, KNSQLSources *tables)
{
    if (!declares(tokens, statement))
        return;
    end = std::min(end, statement.end);
    bool expectsVariable = true;
    for (qsizetype at = statement.begin; at < end; ++at) {
        if (KNSQLName::is(tokens, at, u',') || KNSQLName::is(tokens, at, u'('))
            expectsVariable = true;
        if (tokens.at(at).kind != SQLTokenKind::Variable || !expectsVariable)
            continue;
        expectsVariable = false;
        KNSQLVariable variable{tokens.textAt(at).toString(), {}, tokens.at(at).location};
        qsizetype next = at + 1;
        if (next < end && tokens.at(next).role == Role::As)
            ++next;
        if (next < end && tokens.at(next).role == Role::Table) {
            variable.type = tokens.textAt(next).toString();
            KNSQLSource table;
            table.path = QStringList{variable.name};
            table.location = variable.location;
            table.isResolved = true;
            if (KNSQLName::is(tokens, next + 1, u'(')) {
                table.outputs = KNSQLColumnDefinitions(tokens, next + 1, end);
                at = KNSQLName::behindParentheses(tokens, next + 1, end) - 1;
            }
            tables->append(table);
        } else {
            at = KNSQLName::type(tokens, next, end, &variable.type) - 1;
        }
        variables->append(variable);
    }
}

void KNSQLDeclarations::addTemporaryTable(const KNSQLTokens &tokens, const KNSQLStatement &statement,
                                          KNSQLSources *tables)
{
    if (statement.lead != Role::Create || statement.end - statement.begin < 3 ||
        tokens.at(statement.begin + 1).role != Role::Table)
        return;
    const KNSQLName::Path path = KNSQLName::path(tokens, statement.begin + 2, statement.end);
    if (path.parts.isEmpty() || !path.parts.last().startsWith(u'#') || !KNSQLName::is(tokens, path.end, u'('))
        return;
    KNSQLSource table;
    table.path = QStringList{path.parts.last()};
    table.location = tokens.at(path.end - 1).location;
    table.isResolved = true;
    table.outputs = KNSQLColumnDefinitions(tokens, path.end, statement.end);
    tables->append(table);
}
