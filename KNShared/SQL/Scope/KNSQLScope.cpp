#include "SQL/Scope/KNSQLScope.h"

#include "SQL/Scope/KNSQLDeclarations.h"
#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLScopeParser.h"

namespace {

using Role = KNSQLRole;

bool isPartOfName(SQLTokenKind kind)
{
    return kind == SQLTokenKind::Word || kind == SQLTokenKind::BracketedIdentifier ||
           kind == SQLTokenKind::QuotedIdentifier || kind == SQLTokenKind::Variable;
}

/// Whether the caret stands in a token, which may lack its end.
bool isInside(const KNSQLTokens &tokens, qsizetype index, qsizetype caret)
{
    const KNSQLPiece &piece = tokens.at(index);
    if (caret < piece.end())
        return true;
    const QStringView text = tokens.textAt(index);
    const bool isQuoted = piece.kind == SQLTokenKind::String ||
                          piece.kind == SQLTokenKind::QuotedIdentifier ||
                          piece.kind == SQLTokenKind::BracketedIdentifier;
    const QChar closing = piece.kind == SQLTokenKind::String             ? u'\''
                          : piece.kind == SQLTokenKind::QuotedIdentifier ? u'"'
                                                                         : u']';
    return isQuoted && caret == piece.end() && (text.size() < 2 || text.back() != closing);
}

/// Whether a quoted name ends with its quote.
bool closesName(QStringView name)
{
    return name.size() > 1 && name.back() == (name.front() == u'[' ? u']' : u'"');
}

/// Finds the name at the caret and the names before it. False where none can stand.
bool findTyped(const KNSQLTokens &tokens, qsizetype caret, KNSQLScope *scope, KNSQLTyped *typed)
{
    qsizetype index = tokens.countBefore(caret);
    typed->begin = typed->end = index;
    scope->replaceFrom = scope->replaceTo = caret;
    if (index > 0 && tokens.at(index - 1).end() >= caret) {
        const KNSQLPiece &piece = tokens.at(index - 1);
        if (piece.kind == SQLTokenKind::String ? isInside(tokens, index - 1, caret)
                                               : piece.kind == SQLTokenKind::Number)
            return false;
        const bool isClosedQuote = piece.kind != SQLTokenKind::Word && piece.kind != SQLTokenKind::Variable &&
                                   !isInside(tokens, index - 1, caret);
        if (isPartOfName(piece.kind) && !isClosedQuote) {
            scope->replaceFrom = piece.location;
            // An open quote reaches further than the name.
            const bool isOpen = piece.kind != SQLTokenKind::Word && piece.kind != SQLTokenKind::Variable;
            const bool isOnlyQuoteLeft =
                isOpen && caret == piece.end() - 1 && closesName(tokens.textAt(index - 1));
            scope->replaceTo = isOpen && !isOnlyQuoteLeft ? caret : piece.end();
            scope->prefix = KNSQLName::withoutQuotes(
                QStringView(tokens.text()).mid(piece.location, caret - piece.location));
            typed->begin = --index;
        }
    }
    QStringList qualifier;
    while (index > 0 && KNSQLName::is(tokens, index - 1, u'.')) {
        --index;
        if (index > 0 && (KNSQLName::isName(tokens, index - 1) || isPartOfName(tokens.at(index - 1).kind)) &&
            tokens.at(index - 1).kind != SQLTokenKind::Variable) {
            --index;
            qualifier.prepend(KNSQLName::text(tokens, index));
        } else {
            qualifier.prepend(QStringLiteral(""));
        }
    }
    scope->qualifier = qualifier;
    typed->begin = index;
    return true;
}

/// SELECT ... INTO #name of a statement before.
void addSelectInto(const KNSQLTokens &tokens, const KNSQLStatement &statement, KNSQLSources *tables)
{
    for (qsizetype at = statement.begin; at + 1 < statement.end; ++at) {
        if (tokens.at(at).role != Role::Into || !tokens.textAt(at + 1).startsWith(u'#') ||
            statement.lead == Role::Insert)
            continue;
        KNSQLScope scope;
        KNSQLScopeParser parser(tokens, statement, {statement.end, statement.end});
        parser.parse(&scope);
        KNSQLSource table = parser.result();
        table.path = QStringList{tokens.textAt(at + 1).toString()};
        table.location = tokens.at(at + 1).location;
        tables->append(table);
        return;
    }
}

/// The quote that is missing in a quoted name at the caret, which reaches into the text behind it; null if
/// none is.
QChar missingQuote(const KNSQLTokens &tokens, qsizetype caret)
{
    const qsizetype index = tokens.countBefore(caret) - 1;
    if (index < 0 || tokens.at(index).end() < caret || !isInside(tokens, index, caret))
        return QChar();
    const KNSQLPiece &piece = tokens.at(index);
    const bool isBracketed = piece.kind == SQLTokenKind::BracketedIdentifier;
    if (!isBracketed && piece.kind != SQLTokenKind::QuotedIdentifier)
        return QChar();
    const QChar closing = isBracketed ? u']' : u'"';
    const QStringView behind = QStringView(tokens.text()).mid(caret, piece.end() - caret);
    const bool isClosed = behind.endsWith(closing) && !behind.contains(u'[') && !behind.contains(u'\n');
    return isClosed ? QChar() : closing;
}

/// Whether a statement can begin with the typed name: where one must, and in a line of its own also where the
/// words that begin statements are offered.
bool startsStatement(const KNSQLTokens &tokens, const KNSQLScope &scope, qsizetype begin)
{
    const QStringList words = tokens.dialect().clauses.value(KNSQLClause::Statement).beginWords;
    const bool offersStatements = !words.isEmpty() && scope.words.contains(words.last());
    if (!offersStatements || !scope.qualifier.isEmpty() || KNSQLName::is(tokens, begin - 1, u'('))
        return false;
    if (begin == 0 || KNSQLName::is(tokens, begin - 1, u';'))
        return true;
    const KNSQLPiece &previous = tokens.at(begin - 1);
    const qsizetype location = begin < tokens.size() ? tokens.at(begin).location : tokens.text().size();
    const QStringView between = QStringView(tokens.text()).mid(previous.end(), location - previous.end());
    return between.contains(u'\n') || between.contains(u'\r') ||
           (scope.clause == KNSQLClause::Statement && previous.role != Role::None);
}

/// Fills the scope from the statement of the token `caret`, or its gap, and from those before it. Variables
/// count up to the token `declared`.
void fillScope(const KNSQLTokens &tokens, const KNSQLTyped &typed, qsizetype caret, qsizetype declared,
               KNSQLScope *scope)
{
    const auto found = KNSQLStatements::upTo(tokens, caret);
    KNSQLScopeParser(tokens, found.statements.last(), typed).parse(scope);
    for (qsizetype index = 0; index + 1 < found.statements.size(); ++index) {
        const KNSQLStatement &statement = found.statements[index];
        if (!statement.mentionsTemporaryTable)
            continue;
        KNSQLDeclarations::addTemporaryTable(tokens, statement, &scope->temporaryTables);
        addSelectInto(tokens, statement, &scope->temporaryTables);
    }
    for (qsizetype index = found.batchBegin; index < found.statements.size(); ++index)
        KNSQLDeclarations::addVariables(tokens, found.statements[index], declared, &scope->variables,
                                        &scope->temporaryTables);
}

KNSQLScope analyse(const KNSQLTokens &tokens, qsizetype caret)
{
    KNSQLScope scope;
    KNSQLTyped typed;
    if (tokens.isInComment(caret) || !findTyped(tokens, caret, &scope, &typed))
        return scope;
    const bool isTyped = typed.end > typed.begin;
    fillScope(tokens, typed, isTyped ? typed.begin + 1 : typed.begin, typed.begin, &scope);
    scope.startsStatement = startsStatement(tokens, scope, typed.begin);
    return scope;
}

} // namespace

KNSQLScope KNAnalyseSQLScope(const KNSQLTokens &tokens, qsizetype caret)
{
    const QChar quote = missingQuote(tokens, caret);
    if (quote.isNull())
        return analyse(tokens, caret);
    QString text = tokens.text();
    text.insert(caret, quote);
    KNSQLTokens closed(tokens.dialect());
    closed.setText(text);
    KNSQLScope scope = analyse(closed, caret);
    scope.replaceTo = caret;
    return scope;
}

KNSQLScope KNSQLScopeOfName(const KNSQLTokens &tokens, qsizetype token)
{
    KNSQLScope scope;
    fillScope(tokens, {token, token}, token + 1, tokens.size(), &scope);
    return scope;
}
