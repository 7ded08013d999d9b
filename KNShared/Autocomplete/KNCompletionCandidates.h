#pragma once

#include "Autocomplete/KNCompletionItem.h"
#include "Autocomplete/KNCompletionMatch.h"

#include <QHash>
#include <QList>

class KNSQLTokens;

/// Collects the names that suit what was typed, with their ranks.
class KNCompletionCandidates
{
public:
    /// How near a name is to the place: smaller is nearer.
    enum Group {
        Conditions,
        Near,
        Outer,
        Names,
        Related,
        Objects,
        OtherObjects,
        Variables,
        Functions,
        Words,
        Snippets
    };

    KNCompletionCandidates(const KNSQLTokens &tokens, qsizetype caret, const QString &typed);

    /// Whether the name suits. Costs no memory, so that callers make items of suitable names only.
    bool suits(const QString &name) const
    {
        return KNMatchCompletion(name, m_typed) != KNCompletionMatch::None;
    }
    void add(Group group, KNCompletionItem item);

    struct Rank
    {
        KNCompletionMatch match;
        Group group;
        int uses;
    };
    Rank rank(Group group, const QString &name) const;
    /// Below 0 if the first name comes first, 0 if their order decides.
    static int compare(const Rank &a, const QString &nameOfA, const Rank &b, const QString &nameOfB);
    /// The best ones, each name once per text.
    QList<KNCompletionItem> best(qsizetype limit);

private:
    struct Candidate
    {
        KNCompletionItem item;
        Rank rank;
        qsizetype position;
    };
    static bool isBetter(const Candidate &a, const Candidate &b);

    const QString m_typed;
    QHash<QString, int> m_uses; ///< of names near the caret, by name in lower case
    QList<Candidate> m_candidates;
};
