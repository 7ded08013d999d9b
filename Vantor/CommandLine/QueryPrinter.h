#pragma once

#include "CommandLine/Terminal.h"
#include "Database/KNResultSetHolder.h"
#include "Export/ResultWriter.h"

#include <QSet>

#include <atomic>

/// Writes the results of a run while they arrive, and forgets the rows it has written. Messages and errors go
/// to standard error.
class QueryPrinter
{
public:
    /// Rows that the run may be ahead of the printer.
    static constexpr qsizetype ReadAhead = 20'000;

    /// `withSummaries` shows what each statement gave.
    QueryPrinter(const KNResultSetHolder &holder, ResultWriter &writer, bool withSummaries);

    /// Prints until `done` is true and nothing is left; false as soon as the output cannot be written.
    bool printUntil(const std::atomic<bool> &done);
    /// Prints what came last and ends the output.
    void printRest();

    bool isGood() const { return m_writer.isGood(); }
    /// Whether the server or the client library reported an error.
    bool hadErrors() const { return m_hadErrors; }

private:
    KNDatabaseResultSetPtr nextResultSet() const;
    void printRows(KNDatabaseResultSet &resultSet);
    void printMessages(const KNDatabaseResultSet &resultSet);
    void printMessage(const DatabaseMessage &message);

    const KNResultSetHolder &m_holder;
    ResultWriter &m_writer;
    const bool m_withSummaries;
    Terminal::Spinner m_spinner;
    QSet<const KNDatabaseResultSet *> m_begun;
    QList<KNDatabaseResultSetPtr> m_awaitingMessages; ///< messages may come until the run has ended
    bool m_hadErrors = false;
};
