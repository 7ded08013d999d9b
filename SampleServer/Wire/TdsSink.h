#pragma once

#include "Types/ResultSink.h"
#include "Wire/PacketReader.h"
#include "Wire/ResultWriter.h"
#include "Wire/TokenWriter.h"

#include <string>
#include <vector>

namespace SampleServer {

/// Converts the engine's output for one request to response tokens. One sink per request.
class TdsSink final : public ResultSink
{
public:
    /// A batch ends with DONE; inside a procedure call every statement ends with DONEINPROC, the call with
    /// DONEPROC.
    enum class Request { Batch, ProcedureCall };

    TdsSink(PacketWriter &out, TokenWriter &tokens, ResultWriter &results, PacketReader &in, Request request,
            std::string serverName);

    void columns(const std::vector<ColumnInfo> &columns, const std::vector<std::uint16_t> &orderBy) override;
    void computeColumns(std::uint16_t id, const std::vector<ComputeColumn> &columns,
                        const std::vector<std::uint16_t> &byColumns) override;
    void row(std::span<const Value> values) override;
    void computeRow(std::uint16_t id, std::span<const Value> values) override;
    void endStatement(const StatementEnd &end) override;
    void message(const ServerMessage &message) override;
    void returnStatus(std::int32_t status) override;
    void returnValue(const std::string &name, const SqlType &type, const Value &value) override;
    void endProcedure(const StatementEnd &end) override;
    void databaseChanged(const std::string &oldName, const std::string &newName) override;
    void transactionChanged(TransactionEvent event, std::uint64_t descriptor) override;
    void flush() override;
    bool attentionRequested() override;
    bool waitForAttention(std::int64_t milliseconds) override;

    /// Sets the positions of the output parameters in a call, from 0; by default they are numbered in order.
    void setOutputPlaces(std::vector<std::uint16_t> places) { m_outputPlaces = std::move(places); }
    /// Whether an error was reported.
    bool failed() const { return m_failed; }
    /// Ends the response with the last statement's DONE. A response interrupted by an attention ends with an
    /// error, and the acknowledgement follows as a separate message: some clients wait for both.
    void finish();

private:
    struct PendingDone
    {
        TokenWriter::Done kind;
        std::uint16_t status;
        std::uint16_t currentCommand;
        std::uint64_t rowCount;
    };

    void beginToken();
    void deferDone(TokenWriter::Done kind, const StatementEnd &end);
    bool takeAttention(std::chrono::milliseconds timeout);

    PacketWriter &m_out;
    TokenWriter &m_tokens;
    ResultWriter &m_results;
    PacketReader &m_in;
    Request m_request;
    std::string m_serverName;
    std::optional<PendingDone> m_pending; ///< delayed until it is known whether more follows
    std::vector<std::uint16_t> m_outputPlaces;
    std::uint16_t m_returnValues = 0;
    std::int64_t m_lastTick;
    bool m_attention = false;
    bool m_failed = false;
};

} // namespace SampleServer
