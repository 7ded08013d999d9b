#pragma once

#include "Engine/Session.h"
#include "Wire/LoginHandshake.h"
#include "Wire/ProcedureCall.h"
#include "Wire/TdsSink.h"

#include <optional>

namespace SampleServer {

/// One client's connection from its first to its last packet. Runs on the thread that calls run().
class Connection
{
public:
    Connection(Transport &transport, const ServerSettings &settings);

    /// Serves the client until it disconnects, violates the protocol or the transport is shut down. Does not
    /// throw.
    void run();

private:
    void serve();
    void openSession();
    void answer(const RequestMessage &request);
    void runBatch(std::string_view sql);
    void runProcedureCall(std::span<const std::uint8_t> payload);
    void callProcedure(const ProcedureCall &call, TdsSink &sink);
    std::vector<CallParameter> executeSql(std::string_view sql, std::vector<CallParameter> arguments,
                                          ResultSink &sink);
    void runTransactionRequest(std::span<const std::uint8_t> payload);
    TdsSink makeSink(TdsSink::Request request);

    const ServerSettings &m_settings;
    TlsTransport m_transport;
    PacketReader m_in;
    PacketWriter m_out;
    AcceptedLogin m_login;
    std::optional<TokenWriter> m_tokens; ///< set by the login, which determines the version
    std::optional<ResultWriter> m_results;
    std::optional<Session> m_session;
};

} // namespace SampleServer
