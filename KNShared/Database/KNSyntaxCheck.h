#pragma once

#include "Database/KNQueryDetails.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <functional>

class KNResultSetHolder;
class VantorDatabaseClient;

/// How sessions of a server kind check statements without running them.
struct KNSyntaxCheckRules
{
    QString begin;        ///< the batch after which a session only checks; empty if it cannot
    QString end;          ///< the batch that ends this
    QString switchWord;   ///< in every batch that could end it
    QStringList settings; ///< words of statements that change the session even if they are only checked

    bool isSupported() const { return !begin.isEmpty(); }
};

/// Has a server check the syntax of batches, none of which runs. Used by one thread.
class KNSHARED_EXPORT KNSyntaxCheck
{
public:
    explicit KNSyntaxCheck(KNSyntaxCheckRules rules)
        : m_rules(std::move(rules))
    {
    }

    /// Checks all batches, also behind one with an error, and appends their errors to the holder. A session
    /// that may be left changed is disconnected. `error` is that of a batch that could not be checked, or
    /// else the first syntax error.
    void run(const QList<KNQueryDetails> &batches, VantorDatabaseClient &client, KNResultSetHolder &results,
             KNError *error);

    /// Whether a checked batch has an error.
    bool hadErrors() const { return m_hadErrors; }
    /// The batches that were not sent because they could have run.
    const QList<KNQueryDetails> &unchecked() const { return m_unchecked; }
    /// "The statements are correct.", or why that is not known for all of them; null after errors.
    QString summary() const;

private:
    void check(const KNQueryDetails &batch, VantorDatabaseClient &client, KNResultSetHolder &results,
               KNError *error);

    const KNSyntaxCheckRules m_rules;
    QList<KNQueryDetails> m_unchecked;
    qsizetype m_checkedCount = 0;
    bool m_hadErrors = false;
    bool m_changesSession = false;
};
