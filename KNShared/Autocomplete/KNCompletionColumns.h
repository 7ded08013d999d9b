#pragma once

#include "Autocomplete/KNCompletionCandidates.h"
#include "Autocomplete/KNCompletionList.h"
#include "Autocomplete/KNSourceColumns.h"

#include <QHash>

/// Adds the columns that can stand at a place, and lists of columns, to the candidates. Its arguments must
/// outlive it.
class KNCompletionColumns
{
public:
    using Group = KNCompletionCandidates::Group;

    KNCompletionColumns(const KNCompletionRequest &request, const KNSourceColumns &sources,
                        KNCompletionCandidates &candidates)
        : m_request(request)
        , m_scope(request.scope)
        , m_sources(sources)
        , m_candidates(candidates)
    {
    }

    /// Whether only columns of the statement's target can stand there.
    bool listsTarget() const;
    /// Those of all sources.
    void add();
    void addOf(const KNSQLSource &source, Group group, bool isQualifiedIfAmbiguous);
    /// Those of the source with this visible name.
    void addOfSource(const QString &name);
    /// Those of a source that is named with its schema.
    void addOfPath();
    /// All columns instead of a star, and the lists of an INSERT.
    void addLists();

private:
    using Kind = KNCompletionItem::Kind;

    void addItem(Group group, Kind kind, const QString &name, const QString &text);
    bool isAmbiguous(const QString &name);
    QString quoted(const QString &name) const
    {
        return m_request.quotedName ? m_request.quotedName(name) : name;
    }

    const KNCompletionRequest &m_request;
    const KNSQLScope &m_scope;
    const KNSourceColumns &m_sources;
    KNCompletionCandidates &m_candidates;
    QHash<QString, int> m_counts; ///< of columns in the sources of the query
};
