#include "CommandLine/QueryPrinter.h"

#include "Foundation/KNFormat.h"

namespace {

constexpr int ErrorSeverity = 11;

} // namespace

QueryPrinter::QueryPrinter(const KNResultSetHolder &holder, ResultWriter &writer, bool withSummaries)
    : m_holder(holder)
    , m_writer(writer)
    , m_withSummaries(withSummaries || Terminal::isErrorTerminal())
    , m_spinner(Terminal::isErrorTerminal())
{
    m_writer.beginRun();
}

/// The first result set that was not begun yet; a set may be taken out of the holder meanwhile.
KNDatabaseResultSetPtr QueryPrinter::nextResultSet() const
{
    const auto resultSets = m_holder.resultSets();
    for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
        if (!m_begun.contains(resultSet.get()))
            return resultSet;
    }
    return nullptr;
}

bool QueryPrinter::printUntil(const std::atomic<bool> &done)
{
    for (;;) {
        // Read before looking for results: whatever comes later comes before it turns true.
        const bool wasDone = done;
        if (const KNDatabaseResultSetPtr resultSet = nextResultSet()) {
            m_begun.insert(resultSet.get());
            for (const KNDatabaseResultSetPtr &finished : std::as_const(m_awaitingMessages))
                printMessages(*finished);
            m_awaitingMessages = {resultSet};
            printRows(*resultSet);
        } else if (wasDone) {
            return isGood();
        } else {
            m_holder.waitForMoreThan(m_begun.size(), std::chrono::milliseconds(20));
            m_spinner.tick(m_holder.totalResultCount());
        }
        if (!isGood())
            return false;
    }
}

void QueryPrinter::printRest()
{
    m_spinner.clear();
    for (const KNDatabaseResultSetPtr &resultSet : std::as_const(m_awaitingMessages))
        printMessages(*resultSet);
    m_awaitingMessages.clear();
    m_writer.endRun();
}

void QueryPrinter::printRows(KNDatabaseResultSet &resultSet)
{
    KNRowStore &rows = resultSet.rows();
    qsizetype next = 0;
    bool begun = false;
    while (isGood()) {
        const bool finished = resultSet.isFinished();
        if (rows.waitForMoreThan(next, std::chrono::milliseconds(finished ? 0 : 50))) {
            if (!std::exchange(begun, true)) {
                m_spinner.clear();
                m_writer.beginResult(resultSet.columnNames());
            }
            for (const qsizetype end = rows.rowCount(); next < end; ++next)
                m_writer.writeRow(rows.row(next));
            rows.discardBefore(next);
        } else if (finished) {
            break;
        }
        if (!Terminal::isOutputTerminal())
            m_spinner.tick(m_holder.totalResultCount());
    }
    m_spinner.clear();
    if (!begun && !resultSet.columnNames().isEmpty())
        m_writer.beginResult(resultSet.columnNames());
    if (begun || !resultSet.columnNames().isEmpty())
        m_writer.endResult();
}

void QueryPrinter::printMessages(const KNDatabaseResultSet &resultSet)
{
    const auto serverMessages = resultSet.serverMessages();
    for (const DatabaseMessage &message : serverMessages)
        printMessage(message);
    if (!m_withSummaries)
        return;
    const auto messages = resultSet.messages();
    for (const KNDisplayMessage &message : messages) {
        // The red ones repeat what was printed above.
        if (message.colour == KNDisplayMessage::Colour::Black)
            Terminal::printError(message.text, Terminal::Colour::Grey);
    }
}

void QueryPrinter::printMessage(const DatabaseMessage &message)
{
    if (message.type == DatabaseMessage::ClientError) {
        m_hadErrors = true;
        Terminal::printError(KNFormat("Client error %d: %@", message.msgno, message.msgtext),
                             Terminal::Colour::Red);
        return;
    }
    if (message.severity < ErrorSeverity) {
        Terminal::printError(message.msgtext,
                             message.severity == 0 ? Terminal::Colour::None : Terminal::Colour::Yellow);
        return;
    }
    m_hadErrors = true;
    QString head = KNFormat("Msg %d, Level %d, State %d", message.msgno, message.severity, message.msgstate);
    if (!message.procname.isEmpty())
        head += KNFormat(", Procedure %@", message.procname);
    head += KNFormat(", Line %lu", message.calculatedLineNumber);
    Terminal::printError(head, Terminal::Colour::Red);
    Terminal::printError(message.msgtext, Terminal::Colour::Red);
}
