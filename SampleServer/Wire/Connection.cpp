#include "Wire/Connection.h"

#include "Engine/Server.h"
#include "Types/Text.h"
#include "Wire/ProtocolError.h"
#include "Wire/RequestParser.h"

namespace SampleServer {

namespace {

/// Larger than any realistic request, small enough for the server's memory.
constexpr std::size_t RequestLimit = 64 << 20;

ServerMessage error(std::int32_t number, std::uint8_t state, std::string text)
{
    ServerMessage message;
    message.number = number;
    message.state = state;
    message.severity = 16;
    message.text = std::move(text);
    return message;
}

} // namespace

Connection::Connection(Transport &transport, const ServerSettings &settings)
    : m_settings(settings)
    , m_transport(transport)
    , m_in(m_transport)
    , m_out(m_transport)
{
}

void Connection::run()
{
    try {
        LoginHandshake handshake(m_transport, m_in, m_out, m_settings);
        if (auto login = handshake.authenticate()) {
            m_login = std::move(*login);
            openSession();
            handshake.confirm(m_login);
            serve();
        }
    } catch (const ConnectionLost &) {
        // The client has disconnected: nothing can be sent.
    } catch (const std::exception &) {
        // The client violated the protocol, or the server failed in the middle of a response: the position in
        // the stream is unknown, so the connection cannot continue.
    }
}

void Connection::openSession()
{
    m_session.emplace(m_settings.server, m_login.user, m_login.database);
    m_session->setClient(m_login.request.hostName, m_login.request.applicationName);
    if (m_login.request.odbc)
        m_session->useOdbcDefaults();
    m_out.setProcessId(static_cast<std::uint16_t>(m_session->processId()));
}

void Connection::serve()
{
    m_tokens.emplace(m_out, m_login.version);
    m_results.emplace(m_out, m_login.version);
    m_in.setMessageLimit(RequestLimit);
    for (;;)
        answer(m_in.read());
}

void Connection::answer(const RequestMessage &request)
{
    constexpr std::uint8_t reset =
        PacketStatus::ResetConnection | PacketStatus::ResetConnectionSkipTransaction;
    if (request.type == PacketType::Attention)
        return m_tokens->acknowledgeAttention();
    if (request.status & reset) {
        openSession();
        m_tokens->environmentReset();
    }
    if (request.status & PacketStatus::Ignore) {
        // The client cancelled while it was still sending.
        m_tokens->done(TokenWriter::Done::Statement, DoneStatus::Error, 0, 0);
        return m_out.endMessage();
    }
    switch (request.type) {
    case PacketType::SqlBatch:
        return runBatch(parseBatch(request.payload, m_login.version));
    case PacketType::Rpc:
        return runProcedureCall(request.payload);
    case PacketType::TransactionManager:
        return runTransactionRequest(request.payload);
    default:
        throw ProtocolError("A packet of a type that is not served.");
    }
}

void Connection::runBatch(std::string_view sql)
{
    TdsSink sink = makeSink(TdsSink::Request::Batch);
    m_session->executeBatch(sql, sink);
    sink.finish();
}

void Connection::runProcedureCall(std::span<const std::uint8_t> payload)
{
    const ProcedureCall call = parseProcedureCall(payload, m_login.version);
    TdsSink sink = makeSink(TdsSink::Request::ProcedureCall);
    if (!call.executesSql() && call.refusal.empty()) {
        callProcedure(call, sink);
        return sink.finish();
    }
    std::vector<CallParameter> arguments;
    if (!call.refusal.empty())
        sink.message(error(50000, 1, call.refusal));
    else if (const auto statement = call.statement())
        arguments = executeSql(*statement, call.statementParameters(), sink);
    else
        sink.message(
            error(214, 2, "Procedure expects parameter '@statement' of type 'ntext/nchar/nvarchar'."));

    sink.returnStatus(sink.failed() ? 1 : 0);
    for (const CallParameter &argument : arguments) {
        if (argument.isOutput)
            sink.returnValue(argument.name, argument.type, argument.value);
    }
    StatementEnd end;
    end.error = sink.failed();
    sink.endProcedure(end);
    sink.finish();
}

void Connection::callProcedure(const ProcedureCall &call, TdsSink &sink)
{
    std::vector<ProcedureArgument> arguments;
    std::vector<std::uint16_t> outputs;
    for (const CallParameter &parameter : call.parameters) {
        ProcedureArgument argument;
        argument.name = parameter.name;
        argument.type = parameter.type;
        argument.value = parameter.value;
        argument.output = parameter.isOutput;
        argument.isDefault = parameter.isDefault;
        if (argument.output)
            outputs.push_back(static_cast<std::uint16_t>(arguments.size()));
        arguments.push_back(std::move(argument));
    }
    sink.setOutputPlaces(std::move(outputs));
    m_session->callProcedure(call.procedure, arguments, sink);
}

/// Runs a statement with parameters and returns them with their final values.
std::vector<CallParameter> Connection::executeSql(std::string_view sql, std::vector<CallParameter> arguments,
                                                  ResultSink &sink)
{
    std::vector<BatchParameter> variables(arguments.begin(), arguments.end());
    m_session->executeBatch(sql, variables, sink);
    for (std::size_t index = 0; index < arguments.size(); ++index)
        arguments[index].value = std::move(variables[index].value);
    return arguments;
}

void Connection::runTransactionRequest(std::span<const std::uint8_t> payload)
{
    if (const auto sql = parseTransactionRequest(payload, m_login.version))
        return runBatch(*sql);
    TdsSink sink = makeSink(TdsSink::Request::Batch);
    sink.message(error(50000, 1, "Distributed transactions are not supported by this server."));
    sink.finish();
}

TdsSink Connection::makeSink(TdsSink::Request request)
{
    return TdsSink(m_out, *m_tokens, *m_results, m_in, request, m_settings.server->options().serverName);
}

} // namespace SampleServer
