#include "CommandLine/QueryPrinter.h"

#include "CommandLine/ErrorExcerpt.h"
#include "Database/KNMessageText.h"
#include "Foundation/KNFormat.h"

#include <thread>

namespace {

Terminal::Colour colourOf(KNMessageText::Kind kind)
{
    switch (kind) {
    case KNMessageText::Kind::Error:
        return Terminal::Colour::Red;
    case KNMessageText::Kind::Warning:
    case KNMessageText::Kind::Information:
        return Terminal::Colour::Yellow;
    case KNMessageText::Kind::Print:
        break;
    }
    return Terminal::Colour::None;
}

} // namespace

QueryPrinter::QueryPrinter(KNResultSetHolder &holder, ResultWriter &writer, const QString &text,
                           bool withSummaries)
    : m_holder(holder)
    , m_writer(writer)
    , m_text(text)
    , m_withSummaries(withSummaries || Terminal::isErrorTerminal())
    , m_showsProgress(!Terminal::isOutputTerminal())
    , m_spinner(Terminal::isErrorTerminal())
{
    m_writer.beginRun();
}

bool QueryPrinter::printUntil(const std::atomic<bool> &done)
{
    for (;;) {
        // Read before the results: all results exist before it becomes true.
        const bool wasDone = done;
        const QList<KNDatabaseResultSetPtr> resultSets = m_holder.takeResultSets();
        const Terminal::ErrorLines lines;
        for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
            if (!goesOn())
                return false;
            // The messages of a result are complete once the next one exists.
            for (const KNDatabaseResultSetPtr &finished : std::as_const(m_awaitingMessages))
                printMessages(*finished);
            m_awaitingMessages = {resultSet};
            printRows(*resultSet);
        }
        if (!goesOn())
            return false;
        if (!resultSets.isEmpty())
            continue;
        if (wasDone)
            return true;
        // Not woken by every small result: that would cost more than printing them.
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        m_spinner.tick(m_holder.totalResultCount());
    }
}

void QueryPrinter::printRest()
{
    m_spinner.clear();
    const Terminal::ErrorLines lines;
    for (const KNDatabaseResultSetPtr &resultSet : std::as_const(m_awaitingMessages))
        printMessages(*resultSet);
    m_awaitingMessages.clear();
    if (m_isSilent)
        printSummary(m_silentSummary);
    m_writer.endRun();
}

void QueryPrinter::printRows(KNDatabaseResultSet &resultSet)
{
    const QStringList columnNames = resultSet.columnNames();
    if (columnNames.isEmpty())
        return;
    Terminal::ErrorLines::flush(); // the lines may go to the same terminal as the rows
    KNRowStore &rows = resultSet.rows();
    qsizetype next = 0;
    while (goesOn()) {
        const bool finished = resultSet.isFinished();
        if (rows.waitForMoreThan(next, std::chrono::milliseconds(finished ? 0 : 50))) {
            if (next == 0) {
                m_spinner.clear();
                m_writer.beginResult(columnNames);
            }
            next = printRowsFrom(next, rows, columnNames.size());
            rows.discardBefore(next);
        } else if (finished) {
            break;
        }
        if (m_showsProgress)
            m_spinner.tick(m_holder.totalResultCount());
    }
    m_spinner.clear();
    if (next == 0)
        m_writer.beginResult(columnNames);
    m_writer.endResult();
}

/// Writes the published rows from a row number on; returns the number of the first row that was not written.
qsizetype QueryPrinter::printRowsFrom(qsizetype first, const KNRowStore &rows, qsizetype columnCount)
{
    constexpr qsizetype RowsBetweenQuestions = 256;
    KNRowReader reader(rows); // a new one, because discarding rows frees blocks of memory
    m_cells.resize(static_cast<std::size_t>(columnCount));
    const qsizetype end = rows.rowCount();
    for (qsizetype row = first; row < end; ++row) {
        if (row % RowsBetweenQuestions == 0 && !goesOn())
            return row;
        reader.seek(row);
        for (KNRowCell &cell : m_cells)
            cell = reader.next();
        m_writer.writeRow(m_cells);
    }
    return end;
}

void QueryPrinter::printMessages(const KNDatabaseResultSet &resultSet)
{
    const auto serverMessages = resultSet.serverMessages();
    for (const DatabaseMessage &message : serverMessages)
        printMessage(message);
    const auto messages = resultSet.messages();
    const bool isSilent = resultSet.isSilent();
    m_isSilent = m_isSilent && isSilent && serverMessages.isEmpty();
    if (isSilent && !messages.isEmpty())
        m_silentSummary = messages.first();
    if (isSilent)
        return;
    for (const KNDisplayMessage &message : messages)
        printSummary(message);
}

void QueryPrinter::printSummary(const KNDisplayMessage &message) const
{
    // Red summaries repeat errors that were printed as messages of the server.
    if (m_withSummaries && message.colour == KNDisplayMessage::Colour::Black && !message.text.isEmpty())
        Terminal::printError(message.text, Terminal::Colour::Grey);
}

void QueryPrinter::printMessage(const DatabaseMessage &message)
{
    const KNMessageText::Kind kind = KNMessageText::kindOf(message);
    m_hadErrors = m_hadErrors || kind == KNMessageText::Kind::Error;
    Terminal::printError(KNMessageText::textOf(message), colourOf(kind));
    if (const QString excerpt = errorExcerpt(m_text, message.textRange); !excerpt.isNull())
        Terminal::printError(excerpt, Terminal::Colour::None);
}
