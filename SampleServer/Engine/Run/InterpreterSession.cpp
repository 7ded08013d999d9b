#include "Engine/Bind/TypeRules.h"
#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/MessageFormat.h"
#include "Engine/Run/Interpreter.h"
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

/// The text of a message that the agent's procedures raise by its number; empty for all others.
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

} // namespace

Value Interpreter::evaluate(const Ast::Expression &expression, const SqlType &type)
{
    return evaluate(*binder().bindValueAs(expression, type));
}

void Interpreter::assign(const std::string &variable, Value value, const SqlType &type)
{
    VariableSlot *slot = m_frame->variables.find(variable);
    if (!slot)
        throw Errors::mustDeclareVariable(variable);
    slot->value = convertValue(value, type, slot->type, {0, m_context.dateOrder});
}

Interpreter::Flow Interpreter::run(const Ast::Declare &node)
{
    for (const auto &variable : node.variables) {
        if (variable.table) {
            if (!m_frame->tables.find(variable.name)) {
                Table table;
                table.name = variable.name;
                TableBuilder builder(*this, std::move(table), nullptr);
                builder.add(*variable.table);
                declareTable(variable.name, builder.take());
            }
            continue;
        }
        const NamedType named = findType(variable.type, 1);
        if (named.userType && named.userType->table) {
            if (!m_frame->tables.find(variable.name))
                declareTable(variable.name, dynamic_cast<const Table &>(*named.userType->table));
            continue;
        }
        const SqlType type = named.type;
        if (isLegacyLob(type.id))
            throw EngineError(2739, 16, 1,
                              "The text, ntext, and image data types are invalid for local variables.",
                              ErrorEffect::EndsBatch);
        // A declaration in a loop gives a value only where it says so.
        if (!m_frame->variables.find(variable.name) || variable.initial)
            m_frame->variables.declare(variable.name, type,
                                       variable.initial ? evaluate(*variable.initial, type) : Value());
    }
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::SetVariable &node)
{
    const VariableSlot *slot = m_frame->variables.find(node.name);
    if (!slot)
        throw Errors::mustDeclareVariable(node.name);
    const SqlType type = slot->type;
    assign(node.name, evaluate(*node.value, type), type);
    m_context.rowCount = 1;
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::Print &node)
{
    requireOutsideFunction("PRINT");
    const auto bound = binder().bindValue(*node.value);
    const SqlType type{isUnicodeText(bound->type.id) ? TypeId::NVarChar : TypeId::VarChar,
                       isUnicodeText(bound->type.id) ? 4000 : 8000, 0, 0};
    const Value value = evaluate(*binder().converted(bound, type));
    ServerMessage message;
    message.text = isNull(value) ? std::string() : std::get<std::string>(value);
    message.line = m_line;
    m_sink->message(message);
    m_context.rowCount = 0;
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::RaiseError &node)
{
    const auto bound = binder().bindValue(*node.message);
    const Value text = evaluate(*bound);
    const auto number = [&](const Ast::Expression &expression) {
        const Value value = evaluate(expression, IntType);
        return isNull(value) ? std::int64_t{0} : std::get<std::int64_t>(value);
    };
    if (number(*node.severity) > 18 && !node.log)
        throw EngineError(2754, 16, 1,
                          "Error severity levels greater than 18 can only be specified by members of the "
                          "sysadmin role, using the WITH LOG option.");
    ServerMessage message;
    message.severity = static_cast<std::uint8_t>(std::clamp<std::int64_t>(number(*node.severity), 0, 25));
    const std::int64_t state = number(*node.state);
    message.state = static_cast<std::uint8_t>(state < 0 ? 1 : std::min<std::int64_t>(state, 255));
    message.number = 50000;
    message.line = m_line;
    std::vector<MessageArgument> arguments;
    for (const auto &argument : node.arguments) {
        const auto value = binder().bindValue(*argument);
        const TypeId type = value->type.id;
        if (!isInteger(type) && !isText(type) && !isBinary(type))
            throw EngineError(2748, 16, 1,
                              std::string("Cannot specify ") + messageTypeName(type) +
                                  " data type (parameter " + std::to_string(arguments.size() + 4) +
                                  ") as a substitution parameter.");
        arguments.push_back({value->type, evaluate(*value)});
    }
    const auto *id = std::get_if<std::int64_t>(&text);
    if (const std::string known = id ? agentMessage(*id) : std::string(); !known.empty()) {
        message.number = static_cast<std::int32_t>(*id);
        message.text = formatMessage(known, arguments);
    } else if (id) {
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
    } else {
        const Value format = convertValue(text, bound->type, LongTextType);
        message.text =
            formatMessage(isNull(format) ? std::string() : std::get<std::string>(format), arguments);
    }
    m_context.lastError = message.severity > 10 || node.setsError ? message.number : 0;
    m_context.rowCount = 0;
    message.procedure = m_frame->procedure;
    if (message.severity > 10) {
        EngineError error(message.number, message.severity, message.state, message.text);
        error.isRaised = true;
        report(error, m_line);
        if (!error.isReported) // a CATCH block is going to handle it
            throw error;
    } else {
        if (message.severity == 10) // clients see 0
            message.severity = 0;
        m_sink->message(message);
        endWithoutCount();
    }
    if (node.noWait)
        m_sink->flush();
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::WaitForDelay &node)
{
    const auto bound = binder().bindValue(*node.delay);
    std::int64_t milliseconds = 0;
    if (isLegacyDateTime(bound->type.id)) {
        const Value value = evaluate(*bound);
        milliseconds = isNull(value) ? 0 : std::get<DateTimeValue>(value).ticks / 10'000;
    } else {
        const Value value = evaluate(*binder().converted(bound, LongTextType));
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
    if (m_sink->waitForAttention(milliseconds))
        throw BatchCancelled();
    m_context.rowCount = 0;
    return Flow::Next;
}

void Interpreter::useDatabase(const std::string &name)
{
    const DatabasePtr database = m_state.databases.find(name);
    if (!database)
        throw EngineError(911, 16, 1,
                          "Database '" + name +
                              "' does not exist. Make sure that the name is entered correctly.",
                          ErrorEffect::EndsBatch);
    ++database->users;
    --m_database->users;
    const std::string before = m_database->name();
    m_database = database;
    m_context.database = database->name();
    m_sink->databaseChanged(before, database->name());
}

Interpreter::Flow Interpreter::run(const Ast::Use &node)
{
    if (m_context.edition == Edition::Azure && foldedName(node.database) != foldedName(m_context.database))
        throw EngineError(
            40508, 16, 1,
            "USE statement is not supported to switch between databases. Use a new connection to "
            "connect to a different database.",
            ErrorEffect::EndsBatch);
    useDatabase(node.database);
    m_sink->message({5701, 2, 0, "Changed database context to '" + m_context.database + "'.", {}, m_line});
    m_context.rowCount = 0;
    return Flow::Next;
}

Interpreter::Flow Interpreter::run(const Ast::Transaction &node)
{
    m_context.rowCount = 0;
    std::string name = node.name;
    if (const VariableSlot *slot = name.starts_with('@') ? m_frame->variables.find(name) : nullptr)
        name = isNull(slot->value) ? std::string() : textOf(slot->value, slot->type, 0);
    switch (node.kind) {
    case Ast::Transaction::Kind::Begin:
        m_transactions.begin(name);
        break;
    case Ast::Transaction::Kind::Commit:
        m_transactions.commit();
        break;
    case Ast::Transaction::Kind::Save:
        m_transactions.save(name);
        break;
    case Ast::Transaction::Kind::Rollback:
        if (!name.empty()) {
            m_transactions.rollbackTo(name);
        } else {
            if (!m_transactions.isOpen())
                throw EngineError(3903, 16, 1,
                                  "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION.");
            m_transactions.rollback();
        }
    }
    return Flow::Next;
}

} // namespace SampleServer
