#include "Autocomplete/KNCompletionCandidates.h"

#include "SQL/Scope/KNSQLName.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr qsizetype NearTokens = 1000; ///< on each side of the caret, in which uses are counted

} // namespace

KNCompletionCandidates::KNCompletionCandidates(const KNSQLTokens &tokens, qsizetype caret,
                                               const QString &typed)
    : m_typed(typed)
{
    const qsizetype at = tokens.countBefore(caret);
    const qsizetype end = std::min(tokens.size(), at + NearTokens);
    for (qsizetype index = std::max<qsizetype>(0, at - NearTokens); index < end; ++index) {
        const bool isTyped = tokens.at(index).location <= caret && tokens.at(index).end() >= caret;
        if (!isTyped && KNSQLName::isName(tokens, index))
            ++m_uses[KNSQLName::text(tokens, index).toLower()];
    }
}

void KNCompletionCandidates::add(Group group, KNCompletionItem item)
{
    const KNCompletionMatch match = KNMatchCompletion(item.name, m_typed);
    if (match == KNCompletionMatch::None)
        return;
    const int uses = m_uses.value(item.name.toLower());
    m_candidates.append({std::move(item), match, group, uses, m_candidates.size()});
}

bool KNCompletionCandidates::isBetter(const Candidate &a, const Candidate &b)
{
    if (a.match != b.match)
        return a.match > b.match;
    if (a.group != b.group)
        return a.group < b.group;
    // Columns keep the order of their table.
    const bool isListed = a.group == Near || a.group == Outer || a.group == Conditions;
    if (!isListed && a.uses != b.uses)
        return a.uses > b.uses;
    if (!isListed && a.group != Words && a.group != Related) {
        if (const int order = a.item.name.compare(b.item.name, Qt::CaseInsensitive))
            return order < 0;
    }
    return a.position < b.position;
}

QList<KNCompletionItem> KNCompletionCandidates::best(qsizetype limit)
{
    const qsizetype count = std::min(limit, m_candidates.size());
    std::partial_sort(m_candidates.begin(), m_candidates.begin() + count, m_candidates.end(), isBetter);
    QList<KNCompletionItem> items;
    QSet<QString> seen;
    for (qsizetype index = 0; index < count; ++index) {
        KNCompletionItem &item = m_candidates[index].item;
        const QString key = item.text.toLower();
        if (seen.contains(key))
            continue;
        seen.insert(key);
        items.append(std::move(item));
    }
    return items;
}
