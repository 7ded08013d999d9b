#include "Engine/Run/SessionExecutor.h"
#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/MessageFormat.h"
#include "Engine/Run/TableBuilder.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// The milliseconds of 'hh:mm[:ss[.mmm]]'.
std::optional<std::int64_t> delayFromText(const std::string &text)
{
    const auto parsed = parseDateTime(text, DateOrder::MonthDayYear);
    if (!parsed || parsed->outOfRange || parsed->value.days != Days1900 ||
        text.find(':') == std::string::npos)
        return {};
    return parsed->value.ticks / 10'000;
}

/// The text of an agent message by its number; empty for other numbers.
std::string agentMessage(std::int64_t number)
{
    static constexpr std::pair<std::int64_t, const char *> messages[] = {
        {14243, "Job '%s' started successfully."},
        {14254, "Job '%s' stopped successfully."},
        {14256,
         "Cannot start job '%s' because it does not have any job server(s) defined. Associate the job with a "
         "job server by calling sp_add_jobserver."},
        {14261, "The specified %s ('%s') already exists."},
        {14262, "The specified %s ('%s') does not exist."},
        {14269, "Job '%s' is already targeted at server '%s'."},
        {14294, "Supply either %s or %s to identify the job."},
        {22022, "SQLServerAgent Error: %s"}};
    for (const auto &[known, text] : messages)
        if (known == number)
            return text;
    return {};
}

constexpr SqlType MessageType{TypeId::NVarChar, 2048, 0, 0};

} // namespace

void SessionExecutor::run(const Ast::Declare &node)
{
    for (const auto &variable : node.variables) {
        if (variable.table) {
            if (!m_session.frame->tables.find(variable.name)) {
                Table table;
                table.name = variable.name;
                TableBuilder builder(m_queries, std::move(table), nullptr);
                builder.add(*variable.table);
                m_store.declareTable(variable.name, builder.take());
            }
            continue;
        }
        const NamedType named = m_names.findType(variable.type, 1);
        if (named.userType && named.userType->table) {
            if (!m_session.frame->tables.find(variable.name))
                m_store.declareTable(variable.name, dynamic_cast<const Table &>(*named.userType->table));
            continue;
        }
        const SqlType type = named.type;
        if (isLegacyLob(type.id))
            throw EngineError(2739, 16, 1,
                              "The text, ntext, and image data types are invalid for local variables.",
                              ErrorEffect::EndsBatch);
        // A declaration in a loop assigns a value only if it has an initial value.
        if (!m_session.frame->variables.find(variable.name) || variable.initial)
            m_session.frame->variables.declare(variable.name, type,
                                               variable.initial ? m_queries.evaluate(*variable.initial, type)
                                                                : Value());
    }
}

void SessionExecutor::run(const Ast::SetVariable &node)
{
    const VariableSlot *slot = m_session.frame->variables.find(node.name);
    if (!slot)
        throw Errors::mustDeclareVariable(node.name);
    const SqlType type = slot->type;
    m_queries.assign(node.name, m_queries.evaluate(*node.value, type), type);
    m_session.evaluation.rowCount = 1;
}

void SessionExecutor::run(const Ast::Print &node)
{
    m_session.requireOutsideFunction("PRINT");
    const auto bound = m_queries.binder().bindValue(*node.value);
    const SqlType type{isUnicodeText(bound->type.id) ? TypeId::NVarChar : TypeId::VarChar,
                       isUnicodeText(bound->type.id) ? 4000 : 8000, 0, 0};
    const Value value = m_queries.evaluate(*m_queries.binder().converted(bound, type));
    ServerMessage message;
    message.text = isNull(value) ? std::string() : std::get<std::string>(value);
    message.line = m_session.line;
    m_session.sink->message(message);
    m_session.evaluation.rowCount = 0;
}

std::int64_t SessionExecutor::numberOf(const Ast::Expression &expression)
{
    const Value value = m_queries.evaluate(expression, IntType);
    return isNull(value) ? 0 : std::get<std::int64_t>(value);
}

std::vector<MessageArgument> SessionExecutor::messageArguments(const Ast::RaiseError &node)
{
    std::vector<MessageArgument> arguments;
    for (const auto &argument : node.arguments) {
        const auto value = m_queries.binder().bindValue(*argument);
        const TypeId type = value->type.id;
        if (!isInteger(type) && !isText(type) && !isBinary(type))
            throw EngineError(2748, 16, 1,
                              std::string("Cannot specify ") + messageTypeName(type) +
                                  " data type (parameter " + std::to_string(arguments.size() + 4) +
                                  ") as a substitution parameter.");
        arguments.push_back({value->type, m_queries.evaluate(*value)});
    }
    return arguments;
}

/// Sets number and text of a RAISERROR message; severity and state are already set.
void SessionExecutor::writeMessage(const Ast::RaiseError &node, const Bound::Expression &source,
                                   const Value &text, ServerMessage &message)
{
    const std::vector<MessageArgument> arguments = messageArguments(node);
    message.number = 50000;
    const auto *id = std::get_if<std::int64_t>(&text);
    if (!id) {
        const Value format = convertValue(text, source.type, LongTextType);
        message.text =
            formatMessage(isNull(format) ? std::string() : std::get<std::string>(format), arguments);
        return;
    }
    if (const std::string known = agentMessage(*id); !known.empty()) {
        message.number = static_cast<std::int32_t>(*id);
        message.text = formatMessage(known, arguments);
        return;
    }
    if (*id < 13000 || *id > 2147483647 || *id == 50000)
        throw EngineError(
            2732, 16, 1,
            "Error number " + std::to_string(*id) +
                " is invalid. The number must be from 13000 through 2147483647 and it cannot be 50000.");
    message.number = 18054;
    message.text =
        "Error " + std::to_string(*id) + ", severity " + std::to_string(message.severity) + ", state " +
        std::to_string(message.state) +
        " was raised, but no message with that error number was found in sys.messages. If error is "
        "larger than 50000, make sure the user-defined message is added using sp_addmessage.";
}

void SessionExecutor::run(const Ast::RaiseError &node)
{
    const auto bound = m_queries.binder().bindValue(*node.message);
    const Value text = m_queries.evaluate(*bound);
    const std::int64_t severity = numberOf(*node.severity);
    if (severity > 18 && !node.log)
        throw EngineError(2754, 16, 1,
                          "Error severity levels greater than 18 can only be specified by members of the "
                          "sysadmin role, using the WITH LOG option.");
    ServerMessage message;
    message.severity = static_cast<std::uint8_t>(std::clamp<std::int64_t>(severity, 0, 25));
    const std::int64_t state = numberOf(*node.state);
    message.state = static_cast<std::uint8_t>(state < 0 ? 1 : std::min<std::int64_t>(state, 255));
    message.line = m_session.line;
    writeMessage(node, *bound, text, message);
    m_session.evaluation.lastError = message.severity > 10 || node.setsError ? message.number : 0;
    m_session.evaluation.rowCount = 0;
    message.procedure = m_session.frame->procedure;
    if (message.severity > 10) {
        EngineError error(message.number, message.severity, message.state, message.text);
        error.isRaised = true;
        m_errors.report(error, m_session.line);
        if (!error.isReported) // a CATCH block is going to handle it
            throw error;
    } else {
        if (message.severity == 10) // clients see 0
            message.severity = 0;
        m_session.sink->message(message);
        m_session.endWithoutCount();
    }
    if (node.noWait)
        m_session.sink->flush();
}

void SessionExecutor::run(const Ast::Throw &node)
{
    if (!node.number) {
        if (!m_session.evaluation.caughtError)
            throw EngineError(10704, 15, 1,
                              "To rethrow an error, a THROW statement must be used inside a CATCH block. "
                              "Insert the THROW statement inside a CATCH block, or add error parameters to "
                              "the THROW statement.",
                              ErrorEffect::EndsBatch);
        EngineError again(50000, 16, 1, {}, ErrorEffect::EndsAll);
        again.message = *m_session.evaluation.caughtError;
        again.hasLine = true;
        throw again;
    }
    const std::int64_t id = numberOf(*node.number);
    if (id < 50000)
        throw EngineError(
            35100, 16, 10,
            "Error number " + std::to_string(id) +
                " in the THROW statement is outside the valid range. Specify an error number in "
                "the valid range of 50000 to 2147483647.");
    const Value text = m_queries.evaluate(*node.message, MessageType);
    throw EngineError(static_cast<std::int32_t>(id), 16, static_cast<int>(numberOf(*node.state)),
                      isNull(text) ? std::string() : std::get<std::string>(text), ErrorEffect::EndsAll);
}

void SessionExecutor::run(const Ast::WaitForDelay &node)
{
    const auto bound = m_queries.binder().bindValue(*node.delay);
    std::int64_t milliseconds = 0;
    if (isLegacyDateTime(bound->type.id)) {
        const Value value = m_queries.evaluate(*bound);
        milliseconds = isNull(value) ? 0 : std::get<DateTimeValue>(value).ticks / 10'000;
    } else {
        const Value value = m_queries.evaluate(*m_queries.binder().converted(bound, LongTextType));
        const std::string text = isNull(value) ? std::string() : std::get<std::string>(value);
        const auto delay = delayFromText(text);
        if (!delay)
            throw EngineError(148, 15, 1,
                              "Incorrect time syntax in time string '" + text + "' used with WAITFOR.",
                              ErrorEffect::EndsBatch);
        milliseconds = *delay;
    }
    if (node.untilTime) {
        const std::int64_t now = currentLocalTime().ticks / 10'000, day = TicksPerDay / 10'000;
        milliseconds = (milliseconds - now + day) % day;
    }
    if (m_session.sink->waitForAttention(milliseconds))
        throw BatchCancelled();
    m_session.evaluation.rowCount = 0;
}

void SessionExecutor::run(const Ast::Use &node)
{
    if (m_session.evaluation.edition == Edition::Azure &&
        foldedName(node.database) != foldedName(m_session.evaluation.database))
        throw EngineError(
            40508, 16, 1,
            "USE statement is not supported to switch between databases. Use a new connection to "
            "connect to a different database.",
            ErrorEffect::EndsBatch);
    m_session.useDatabase(node.database);
    m_session.sink->message({5701,
                             2,
                             0,
                             "Changed database context to '" + m_session.evaluation.database + "'.",
                             {},
                             m_session.line});
    m_session.evaluation.rowCount = 0;
}

void SessionExecutor::run(const Ast::Transaction &node)
{
    m_session.evaluation.rowCount = 0;
    std::string name = node.name;
    if (const VariableSlot *slot = name.starts_with('@') ? m_session.frame->variables.find(name) : nullptr)
        name = isNull(slot->value) ? std::string() : textOf(slot->value, slot->type, 0);
    switch (node.kind) {
    case Ast::Transaction::Kind::Begin:
        m_session.transactions.begin(name);
        break;
    case Ast::Transaction::Kind::Commit:
        m_session.transactions.commit();
        break;
    case Ast::Transaction::Kind::Save:
        m_session.transactions.save(name);
        break;
    case Ast::Transaction::Kind::Rollback:
        if (!name.empty()) {
            m_session.transactions.rollbackTo(name);
        } else {
            if (!m_session.transactions.isOpen())
                throw EngineError(3903, 16, 1,
                                  "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
            m_session.transactions.rollback();
        }
    }
}

} // namespace SampleServer
