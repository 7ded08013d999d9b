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
    const Rank found = rank(group, item.name);
    if (found.match != KNCompletionMatch::None)
        m_candidates.append({std::move(item), found, m_candidates.size()});
}

KNCompletionCandidates::Rank KNCompletionCandidates::rank(Group group, const QString &name) const
{
    return {KNMatchCompletion(name, m_typed), group, m_uses.isEmpty() ? 0 : m_uses.value(name.toLower())};
}

int KNCompletionCandidates::compare(const Rank &a, const QString &nameOfA, const Rank &b,
                                    const QString &nameOfB)
{
    if (a.match != b.match)
        return a.match > b.match ? -1 : 1;
    if (a.group != b.group)
        return a.group < b.group ? -1 : 1;
    // Columns keep the order of their table.
    const bool isListed = a.group == Near || a.group == Outer || a.group == Conditions;
    if (!isListed && a.uses != b.uses)
        return a.uses > b.uses ? -1 : 1;
    const bool isSorted = !isListed && a.group != Words && a.group != Related;
    return isSorted ? nameOfA.compare(nameOfB, Qt::CaseInsensitive) : 0;
}

bool KNCompletionCandidates::isBetter(const Candidate &a, const Candidate &b)
{
    const int order = compare(a.rank, a.item.name, b.rank, b.item.name);
    return order == 0 ? a.position < b.position : order < 0;
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
