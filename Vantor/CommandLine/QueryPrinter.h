#pragma once

#include "CommandLine/Terminal.h"
#include "Database/KNResultSetHolder.h"
#include "Database/KNRowReader.h"
#include "Export/ResultWriter.h"

#include <atomic>
#include <vector>

/// Writes the results of a run while they arrive, and takes them out of the holder: memory does not grow with
/// rows or results. Messages and errors go to standard error.
class QueryPrinter
{
public:
    /// Rows that the run may be ahead of the printer.
    static constexpr qsizetype ReadAhead = 20'000;
    /// Results that the run may be ahead of the printer.
    static constexpr qsizetype ResultReadAhead = 5'000;

    /// `withSummaries` shows what each statement gave.
    QueryPrinter(KNResultSetHolder &holder, ResultWriter &writer, bool withSummaries);

    /// Prints until `done` is true and nothing is left; false as soon as the output cannot be written or
    /// stop() was called.
    bool printUntil(const std::atomic<bool> &done);
    /// Prints what came last and ends the output.
    void printRest();

    /// Ends printUntil() soon. Any thread.
    void stop() { m_isStopped = true; }
    bool isStopped() const { return m_isStopped; }

    bool isGood() const { return m_writer.isGood(); }
    /// Whether the server or the client library reported an error.
    bool hadErrors() const { return m_hadErrors; }

private:
    bool goesOn() const { return !m_isStopped && isGood(); }
    void printRows(KNDatabaseResultSet &resultSet);
    qsizetype printRowsFrom(qsizetype first, const KNRowStore &rows, qsizetype columnCount);
    void printMessages(const KNDatabaseResultSet &resultSet);
    void printSummary(const KNDisplayMessage &message) const;
    void printMessage(const DatabaseMessage &message);

    KNResultSetHolder &m_holder;
    ResultWriter &m_writer;
    const bool m_withSummaries;
    const bool m_showsProgress; ///< while rows are written
    Terminal::Spinner m_spinner;
    std::vector<KNRowCell> m_cells; ///< of the row that is written
    std::atomic<bool> m_isStopped = false;
    QList<KNDatabaseResultSetPtr> m_awaitingMessages; ///< messages may come until the run has ended
    bool m_hadErrors = false;
    bool m_isSilent = true; ///< so far the run had nothing but statements that succeeded
    KNDisplayMessage m_silentSummary;
};
