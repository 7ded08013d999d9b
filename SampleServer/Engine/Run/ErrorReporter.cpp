#include "Engine/Run/ErrorReporter.h"
#include "Engine/Errors.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// Whether the error is an unresolved name: such a statement never started, so a TRY block around it in the
/// same text does not catch it.
bool isNameError(const EngineError &error)
{
    static constexpr std::int32_t numbers[] = {102, 156, 207, 208, 209, 2812, 4104, 4121};
    return error.effect == ErrorEffect::EndsBatch &&
           std::find(std::begin(numbers), std::end(numbers), error.message.number) != std::end(numbers);
}

/// Whether the error concerns values for an identity column, detected before any row was changed.
bool isIdentityError(const EngineError &error)
{
    return error.message.number == 544 || error.message.number == 545 || error.message.number == 8101;
}

} // namespace

void ErrorReporter::locate(EngineError &error, int line) const
{
    if (error.depth >= 0)
        return;
    error.depth = m_session.frame->depth;
    if (rollsBack(error))
        error.effect = ErrorEffect::RollsBack; // also where SET XACT_ABORT is OFF again
    if (!error.hasLine)
        error.message.line = line;
    error.hasLine = true;
    if (error.message.procedure.empty())
        error.message.procedure = m_session.frame->procedure;
    for (ServerMessage &message : error.more) {
        message.line = line;
        message.procedure = m_session.frame->procedure;
    }
}

bool ErrorReporter::rollsBack(const EngineError &error) const
{
    return error.effect == ErrorEffect::RollsBack || (m_session.options.abortTransactions && !error.isRaised);
}

bool ErrorReporter::endsBatch(const EngineError &error) const
{
    return error.effect != ErrorEffect::EndsStatement || rollsBack(error);
}

bool ErrorReporter::endsAll(const EngineError &error) const
{
    return error.effect == ErrorEffect::EndsAll || rollsBack(error);
}

bool ErrorReporter::catches(int tryDepth, const EngineError &error) const
{
    return tryDepth < error.depth || !isNameError(error);
}

bool ErrorReporter::isCaught(const EngineError &error) const
{
    return std::any_of(m_tries.begin(), m_tries.end(), [&](int depth) { return catches(depth, error); });
}

void ErrorReporter::report(EngineError &error, int line, bool changesRows)
{
    locate(error, line);
    m_session.evaluation.lastError = error.message.number;
    m_session.evaluation.rowCount = 0;
    if (error.isReported || isCaught(error))
        return;
    error.isReported = true;
    m_session.sink->message(error.message);
    for (const ServerMessage &message : error.more)
        m_session.sink->message(message);
    if (rollsBack(error))
        m_session.transactions.rollback();
    else if (changesRows && !isIdentityError(error) && error.effect == ErrorEffect::EndsStatement)
        m_session.sink->message(
            {3621, 0, 0, "The statement has been terminated.", error.message.procedure, error.message.line});
    StatementEnd end;
    end.error = true;
    m_session.sink->endStatement(end);
}

void ErrorReporter::reportSyntax(EngineError &error)
{
    const ServerMessage message = error.message;
    if (message.number != 105)
        return report(error, 1);
    // An unclosed quote is reported twice: the open text, and the position where the parser detected it.
    m_session.sink->message(message);
    const std::size_t quote = message.text.find('\'');
    const std::string rest = message.text.substr(quote, message.text.size() - quote - 1);
    EngineError second(102, 15, 1, "Incorrect syntax near " + rest + '.', ErrorEffect::EndsBatch);
    report(second, message.line);
}

void ErrorReporter::endDoomedTransaction()
{
    if (!m_session.evaluation.isTransactionDoomed)
        return;
    EngineError error(
        3998, 16, 1,
        "Uncommittable transaction is detected at the end of the batch. The transaction is rolled "
        "back.",
        ErrorEffect::RollsBack);
    report(error, 1);
}

void ErrorReporter::reportLackOfMemory()
{
    EngineError error = Errors::outOfMemory();
    report(error, m_session.line);
}

} // namespace SampleServer
