#include "Wire/TdsSink.h"

#include "Wire/ProtocolError.h"

#include <ctime>

namespace SampleServer {

namespace {

/// A clock that takes a few nanoseconds to read and advances every few milliseconds: the interval of checks
/// of the socket.
std::int64_t currentTick()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return now.tv_sec * 1'000'000'000 + now.tv_nsec;
}

} // namespace

TdsSink::TdsSink(PacketWriter &out, TokenWriter &tokens, ResultWriter &results, PacketReader &in,
                 Request request, std::string serverName)
    : m_out(out)
    , m_tokens(tokens)
    , m_results(results)
    , m_in(in)
    , m_request(request)
    , m_serverName(std::move(serverName))
    , m_lastTick(currentTick())
{
}

/// More follows, so the delayed end of the previous statement can be sent.
void TdsSink::beginToken()
{
    if (!m_pending)
        return;
    m_tokens.done(m_pending->kind, m_pending->status | DoneStatus::More, m_pending->currentCommand,
                  m_pending->rowCount);
    m_pending.reset();
}

void TdsSink::deferDone(TokenWriter::Done kind, const StatementEnd &end)
{
    beginToken();
    const unsigned status = (end.rowCount ? DoneStatus::Count : 0u) | (end.error ? DoneStatus::Error : 0u);
    m_pending = {kind, static_cast<std::uint16_t>(status), end.currentCommand, end.rowCount.value_or(0)};
}

void TdsSink::columns(const std::vector<ColumnInfo> &columns, const std::vector<std::uint16_t> &orderBy)
{
    beginToken();
    m_results.columns(columns);
    if (!orderBy.empty())
        m_tokens.order(orderBy);
}

void TdsSink::computeColumns(std::uint16_t id, const std::vector<ComputeColumn> &columns,
                             const std::vector<std::uint16_t> &byColumns)
{
    m_results.computeColumns(id, columns, byColumns);
}

void TdsSink::row(std::span<const Value> values)
{
    m_results.row(values);
}

void TdsSink::computeRow(std::uint16_t id, std::span<const Value> values)
{
    m_results.computeRow(id, values);
}

void TdsSink::endStatement(const StatementEnd &end)
{
    const bool inProcedure = end.inProcedure || m_request == Request::ProcedureCall;
    deferDone(inProcedure ? TokenWriter::Done::InProcedure : TokenWriter::Done::Statement, end);
}

void TdsSink::message(const ServerMessage &message)
{
    beginToken();
    m_failed = m_failed || message.severity > 10;
    m_tokens.message(message, m_serverName);
}

void TdsSink::returnStatus(std::int32_t status)
{
    beginToken();
    m_tokens.returnStatus(status);
}

void TdsSink::returnValue(const std::string &name, const SqlType &type, const Value &value)
{
    beginToken();
    const std::uint16_t ordinal =
        m_returnValues < m_outputPlaces.size() ? m_outputPlaces[m_returnValues] : m_returnValues;
    ++m_returnValues;
    m_results.returnValue(ordinal, name, type, value);
}

void TdsSink::endProcedure(const StatementEnd &end)
{
    deferDone(TokenWriter::Done::Procedure, end);
    m_returnValues = 0;
}

void TdsSink::databaseChanged(const std::string &oldName, const std::string &newName)
{
    beginToken();
    m_tokens.environmentText(TokenWriter::EnvironmentText::Database, newName, oldName);
}

void TdsSink::transactionChanged(TransactionEvent event, std::uint64_t descriptor)
{
    beginToken();
    m_tokens.environmentTransaction(event, descriptor);
}

void TdsSink::flush()
{
    m_out.flush();
}

bool TdsSink::takeAttention(std::chrono::milliseconds timeout)
{
    try {
        return m_in.takeAttention(timeout);
    } catch (const ProtocolError &) {
        throw ConnectionLost(); // the only exception with which the engine ends a request
    }
}

bool TdsSink::attentionRequested()
{
    const std::int64_t tick = currentTick();
    if (m_attention || tick == m_lastTick)
        return m_attention;
    m_lastTick = tick;
    m_attention = takeAttention(std::chrono::milliseconds::zero());
    if (!m_attention)
        m_out.sendFullPackets(); // sends the rows of a slow result as they arrive
    return m_attention;
}

bool TdsSink::waitForAttention(std::int64_t milliseconds)
{
    if (!m_attention) {
        m_out.sendFullPackets();
        m_attention = takeAttention(std::chrono::milliseconds(milliseconds));
    }
    return m_attention;
}

void TdsSink::finish()
{
    if (!m_pending || m_attention)
        deferDone(TokenWriter::Done::Statement, StatementEnd{{}, m_failed || m_attention});
    m_tokens.done(m_pending->kind, m_pending->status, m_pending->currentCommand, m_pending->rowCount);
    m_pending.reset();
    m_out.endMessage();
    if (m_attention)
        m_tokens.acknowledgeAttention();
}

} // namespace SampleServer
