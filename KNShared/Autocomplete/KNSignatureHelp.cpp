#include "Autocomplete/KNSignatureHelp.h"

#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLTokens.h"

#include <algorithm>

namespace {

constexpr qsizetype LongestCall = 5'000; ///< tokens between a name and the caret

/// A name of one or several parts that ends at a token.
struct CalledName
{
    QStringList parts;
    qsizetype begin = 0; ///< index of its first token
};

bool isCallable(KNCompletionCatalog::Kind kind, bool isProcedure)
{
    using Kind = KNCompletionCatalog::Kind;
    return isProcedure ? kind == Kind::Procedure
                       : kind == Kind::ScalarFunction || kind == Kind::TableFunction;
}

class SignatureFinder
{
public:
    SignatureFinder(const KNSQLTokens &tokens, qsizetype caret, const KNCompletionCatalog *catalog)
        : m_tokens(tokens)
        , m_catalog(catalog)
        , m_behind(tokens.countBefore(caret))
    {
    }

    std::optional<KNSignatureHelp> find() const
    {
        qsizetype commas = 0;
        qsizetype depth = 0;
        qsizetype argument = m_behind; // the first token of the argument at the caret
        const qsizetype last = std::max<qsizetype>(0, m_behind - LongestCall);
        for (qsizetype index = m_behind - 1; index >= last; --index) {
            if (KNSQLName::is(m_tokens, index, u')')) {
                ++depth;
            } else if (KNSQLName::is(m_tokens, index, u'(')) {
                if (depth-- > 0)
                    continue;
                if (const auto help = functionAt(index, commas))
                    return help;
                commas = depth = 0;
                argument = index;
            } else if (depth == 0 && KNSQLName::is(m_tokens, index, u',')) {
                argument = commas++ == 0 ? index + 1 : argument;
            } else if (depth == 0 && beginsStatement(index)) {
                break; // parentheses before it were left open
            } else if (depth == 0 && m_tokens.at(index).role == KNSQLRole::Execute) {
                return procedureAt(index, commas, commas > 0 ? argument : -1);
            }
        }
        return std::nullopt;
    }

private:
    /// Whether a statement of its own begins here, which no subquery is.
    bool beginsStatement(qsizetype index) const
    {
        const KNSQLRole before = index > 0 ? m_tokens.at(index - 1).role : KNSQLRole::None;
        switch (m_tokens.at(index).role) {
        case KNSQLRole::Select:
            return !KNSQLName::is(m_tokens, index - 1, u'(') && before != KNSQLRole::SetOperator &&
                   before != KNSQLRole::Quantifier;
        case KNSQLRole::Update:
            return !KNSQLName::is(m_tokens, index + 1, u'('); // UPDATE(column) in a trigger
        case KNSQLRole::Insert:
        case KNSQLRole::Delete:
        case KNSQLRole::Merge:
        case KNSQLRole::Declare:
        case KNSQLRole::Use:
        case KNSQLRole::Create:
        case KNSQLRole::Alter:
        case KNSQLRole::Drop:
        case KNSQLRole::Truncate:
        case KNSQLRole::Grant:
        case KNSQLRole::Set:
        case KNSQLRole::Statement:
        case KNSQLRole::Batch:
            return true;
        default:
            return KNSQLName::is(m_tokens, index, u';');
        }
    }

    std::optional<KNSignatureHelp> functionAt(qsizetype parenthesis, qsizetype commas) const
    {
        const CalledName name = nameBefore(parenthesis);
        if (name.parts.isEmpty())
            return std::nullopt;
        KNSignatureHelp help;
        help.begin = m_tokens.at(name.begin).location;
        if (const KNSignature *const builtIn = builtInNamed(name.parts)) {
            help.signature = *builtIn;
        } else if (const auto signature = routineNamed(name.parts, false)) {
            help.signature = *signature;
        } else {
            return std::nullopt;
        }
        help.parameter = help.signature.parameterOf(commas);
        return help;
    }

    /// EXEC name arguments, EXEC @result = name arguments.
    std::optional<KNSignatureHelp> procedureAt(qsizetype execute, qsizetype commas, qsizetype argument) const
    {
        qsizetype begin = execute + 1;
        if (begin + 1 < m_behind && m_tokens.at(begin).kind == SQLTokenKind::Variable &&
            KNSQLName::is(m_tokens, begin + 1, u'='))
            begin += 2;
        if (begin >= m_behind)
            return std::nullopt;
        const KNSQLName::Path path = KNSQLName::path(m_tokens, begin, m_behind);
        const auto signature = routineNamed(path.parts, true);
        if (!signature)
            return std::nullopt;
        KNSignatureHelp help{*signature, -1, m_tokens.at(begin).location};
        const qsizetype first = argument < 0 ? path.end : argument;
        const bool isNamed = first + 1 < m_behind && m_tokens.at(first).kind == SQLTokenKind::Variable &&
                             KNSQLName::is(m_tokens, first + 1, u'=');
        help.parameter = isNamed ? help.signature.parameterNamed(m_tokens.textAt(first).toString())
                                 : help.signature.parameterOf(commas);
        return help;
    }

    /// A function, or one whose name contains that of an object: $PARTITION.function(...).
    const KNSignature *builtInNamed(const QStringList &path) const
    {
        const auto &known = m_tokens.dialect().signatures;
        const auto whole = known.constFind(path.join(u'.').toUpper());
        if (whole != known.constEnd())
            return &*whole;
        const auto first = known.constFind(path.first().toUpper());
        const bool hasPart =
            path.size() == 2 && first != known.constEnd() && first->text.section(u'(', 0, 0).contains(u'.');
        return hasPart ? &*first : nullptr;
    }

    CalledName nameBefore(qsizetype end) const
    {
        CalledName name;
        qsizetype index = end - 1;
        while (index >= 0 && canBeCalled(index)) {
            name.parts.prepend(KNSQLName::text(m_tokens, index));
            name.begin = index;
            if (index < 2 || !KNSQLName::is(m_tokens, index - 1, u'.'))
                break;
            index -= 2;
            if (index > 0 && KNSQLName::is(m_tokens, index, u'.')) { // database..name
                name.parts.prepend(QStringLiteral(""));
                --index;
            }
        }
        return name;
    }

    bool canBeCalled(qsizetype index) const
    {
        const SQLTokenKind kind = m_tokens.at(index).kind;
        return kind == SQLTokenKind::Word || kind == SQLTokenKind::BracketedIdentifier ||
               kind == SQLTokenKind::QuotedIdentifier;
    }

    std::optional<KNSignature> routineNamed(const QStringList &path, bool isProcedure) const
    {
        if (!m_catalog || path.isEmpty())
            return std::nullopt;
        const KNCompletionCatalog::Found found = m_catalog->findOnServer(path);
        if (!found.object || !isCallable(found.object->kind, isProcedure))
            return std::nullopt;
        return KNRoutineSignature(*found.object);
    }

    const KNSQLTokens &m_tokens;
    const KNCompletionCatalog *const m_catalog;
    const qsizetype m_behind; ///< the number of tokens before the caret
};

} // namespace

KNSignature KNRoutineSignature(const KNCompletionCatalog::Object &routine)
{
    const bool isProcedure = routine.kind == KNCompletionCatalog::Kind::Procedure;
    KNSignature signature;
    signature.text = routine.schema + u'.' + routine.name + (isProcedure ? u' ' : u'(');
    const auto children =
        routine.entry ? routine.entry->entryChildren() : KNDatabaseAutocompleteEntry::List();
    for (const KNDatabaseAutocompleteEntry *child : children) {
        if (child->entryCompletionType() != KNDatabaseAutocompleteEntry::Parameter)
            continue;
        if (!signature.parameters.isEmpty())
            signature.text += QStringLiteral(", ");
        const QString parameter = child->entryName() + u' ' + child->entryDetails();
        signature.parameters.append({signature.text.size(), parameter.size()});
        signature.text += parameter;
    }
    if (!isProcedure)
        signature.text += u')';
    return signature;
}

std::optional<KNSignatureHelp> KNSignatureAt(const KNSQLTokens &tokens, qsizetype caret,
                                             const KNCompletionCatalog *catalog)
{
    if (tokens.isInComment(caret))
        return std::nullopt;
    return SignatureFinder(tokens, caret, catalog).find();
}
