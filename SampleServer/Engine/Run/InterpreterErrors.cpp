#include "Engine/Errors.h"
#include "Engine/Run/Interpreter.h"
#include "Engine/ScopedValue.h"

#include <algorithm>

namespace SampleServer {

namespace {

constexpr SqlType MessageType{TypeId::NVarChar, 2048, 0, 0};

/// Whether the error is about a name that means nothing: such a statement never started, so a TRY block
/// around it in the same text does not catch it.
bool isNameError(const EngineError &error)
{
    static constexpr std::int32_t numbers[] = {102, 156, 207, 208, 209, 2812, 4104, 4121};
    return error.effect == ErrorEffect::EndsBatch &&
           std::find(std::begin(numbers), std::end(numbers), error.message.number) != std::end(numbers);
}

/// Whether the error is about values for an identity column, found before any row was touched.
bool isIdentityError(const EngineError &error)
{
    return error.message.number == 544 || error.message.number == 545 || error.message.number == 8101;
}

} // namespace

/// Writes down where an error happened, if that is not known yet.
void Interpreter::locate(EngineError &error, int line) const
{
    if (error.depth >= 0)
        return;
    error.depth = m_frame->depth;
    if (rollsBack(error))
        error.effect = ErrorEffect::RollsBack; // also where SET XACT_ABORT is OFF again
    if (!error.hasLine)
        error.message.line = line;
    error.hasLine = true;
    if (error.message.procedure.empty())
        error.message.procedure = m_frame->procedure;
    for (ServerMessage &message : error.more) {
        message.line = line;
        message.procedure = m_frame->procedure;
    }
}

bool Interpreter::rollsBack(const EngineError &error) const
{
    return error.effect == ErrorEffect::RollsBack || (m_options.abortTransactions && !error.isRaised);
}

bool Interpreter::endsBatch(const EngineError &error) const
{
    return error.effect != ErrorEffect::EndsStatement || rollsBack(error);
}

bool Interpreter::endsAll(const EngineError &error) const
{
    return error.effect == ErrorEffect::EndsAll || rollsBack(error);
}

bool Interpreter::catches(int tryDepth, const EngineError &error) const
{
    return tryDepth < error.depth || !isNameError(error);
}

bool Interpreter::isCaught(const EngineError &error) const
{
    return std::any_of(m_tries.begin(), m_tries.end(), [&](int depth) { return catches(depth, error); });
}

/// Tells the client of an error that no CATCH block is going to handle.
void Interpreter::report(EngineError &error, int line, bool changesRows)
{
    locate(error, line);
    m_context.lastError = error.message.number;
    m_context.rowCount = 0;
    if (error.isReported || isCaught(error))
        return;
    error.isReported = true;
    m_sink->message(error.message);
    for (const ServerMessage &message : error.more)
        m_sink->message(message);
    if (rollsBack(error))
        m_transactions.rollback();
    else if (changesRows && !isIdentityError(error) && error.effect == ErrorEffect::EndsStatement)
        m_sink->message(
            {3621, 0, 0, "The statement has been terminated.", error.message.procedure, error.message.line});
    StatementEnd end;
    end.error = true;
    m_sink->endStatement(end);
}

void Interpreter::reportSyntax(EngineError &error)
{
    const ServerMessage message = error.message;
    if (message.number != 105)
        return report(error, 1);
    // An open quote is told twice: what is open, and where the parser noticed.
    m_sink->message(message);
    const std::size_t quote = message.text.find('\'');
    const std::string rest = message.text.substr(quote, message.text.size() - quote - 1);
    EngineError second(102, 15, 1, "Incorrect syntax near " + rest + '.', ErrorEffect::EndsBatch);
    report(second, message.line);
}

Interpreter::Flow Interpreter::run(const Ast::TryCatch &node)
{
    const int depth = m_frame->depth;
    const std::size_t outerTries = m_tries.size();
    std::optional<EngineError> caught;
    m_tries.push_back(depth);
    try {
        const Flow flow = run(node.body);
        m_tries.resize(outerTries);
        return flow;
    } catch (const EngineError &error) {
        m_tries.resize(outerTries);
        if (error.isReported || !catches(depth, error))
            throw;
        caught = error;
    } catch (...) {
        m_tries.resize(outerTries);
        throw;
    }
    if (m_transactions.isOpen() && rollsBack(*caught))
        m_context.isTransactionDoomed = true;
    m_context.lastError = caught->message.number;
    const ServerMessage &last = caught->more.empty() ? caught->message : caught->more.back();
    const ScopedValue<std::optional<ServerMessage>> current(m_context.caughtError, last);
    return run(node.handler);
}

Interpreter::Flow Interpreter::run(const Ast::Throw &node)
{
    if (!node.number) {
        if (!m_context.caughtError)
            throw EngineError(10704, 15, 1,
                              "To rethrow an error, a THROW statement must be used inside a CATCH block. "
                              "Insert the THROW statement inside a CATCH block, or add error parameters to "
                              "the THROW statement.",
                              ErrorEffect::EndsBatch);
        EngineError again(50000, 16, 1, {}, ErrorEffect::EndsAll);
        again.message = *m_context.caughtError;
        again.hasLine = true;
        throw again;
    }
    const auto number = [&](const Ast::Expression &expression) {
        const Value value = evaluate(expression, IntType);
        return isNull(value) ? std::int64_t{0} : std::get<std::int64_t>(value);
    };
    const std::int64_t id = number(*node.number);
    if (id < 50000)
        throw EngineError(
            35100, 16, 10,
            "Error number " + std::to_string(id) +
                " in the THROW statement is outside the valid range. Specify an error number in "
                "the valid range of 50000 to 2147483647.");
    const Value text = evaluate(*node.message, MessageType);
    throw EngineError(static_cast<std::int32_t>(id), 16, static_cast<int>(number(*node.state)),
                      isNull(text) ? std::string() : std::get<std::string>(text), ErrorEffect::EndsAll);
}

/// A transaction that can only be rolled back does not outlive the batch.
void Interpreter::endDoomedTransaction()
{
    if (!m_context.isTransactionDoomed)
        return;
    EngineError error(
        3998, 16, 1,
        "Uncommittable transaction is detected at the end of the batch. The transaction is rolled "
        "back.",
        ErrorEffect::RollsBack);
    report(error, 1);
}

} // namespace SampleServer
