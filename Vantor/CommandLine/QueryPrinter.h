#pragma once

#include "CommandLine/Terminal.h"
#include "Database/KNResultSetHolder.h"
#include "Database/KNRowReader.h"
#include "Export/ResultWriter.h"

#include <atomic>
#include <vector>

/// Writes the results of a run while they arrive, and removes them from the holder, so that memory does not
/// grow with rows or results. Messages and errors go to standard error.
class QueryPrinter
{
public:
    /// Maximum number of rows that the run may be ahead of the printer.
    static constexpr qsizetype ReadAhead = 20'000;
    /// Maximum number of results that the run may be ahead of the printer.
    static constexpr qsizetype ResultReadAhead = 5'000;

    /// `text` is the whole text, of which errors show a line. `withSummaries` also prints a summary of each
    /// statement.
    QueryPrinter(KNResultSetHolder &holder, ResultWriter &writer, const QString &text, bool withSummaries);

    /// Prints until `done` is true and all results are printed; false as soon as the output cannot be written
    /// or stop() was called.
    bool printUntil(const std::atomic<bool> &done);
    /// Prints the remaining results and ends the output.
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
    const QString m_text;
    const bool m_withSummaries;
    const bool m_showsProgress; ///< while rows are written
    Terminal::Spinner m_spinner;
    std::vector<KNRowCell> m_cells; ///< of the current row
    std::atomic<bool> m_isStopped = false;
    QList<KNDatabaseResultSetPtr> m_awaitingMessages; ///< messages may come until the run has ended
    bool m_hadErrors = false;
    bool m_isSilent = true; ///< the run has had only successful statements so far
    KNDisplayMessage m_silentSummary;
};
