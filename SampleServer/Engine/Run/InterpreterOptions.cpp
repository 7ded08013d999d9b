#include "Engine/Errors.h"
#include "Engine/Run/Interpreter.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// Options that are read and have no effect here: they steer what this server does not have, or it behaves as
/// if they were at their modern setting.
constexpr std::string_view accepted[] = {"ANSI_DEFAULTS",
                                         "ANSI_NULLS",
                                         "ANSI_NULL_DFLT_OFF",
                                         "ANSI_NULL_DFLT_ON",
                                         "ANSI_PADDING",
                                         "ANSI_WARNINGS",
                                         "ARITHABORT",
                                         "ARITHIGNORE",
                                         "CONTEXT_INFO",
                                         "CURSOR_CLOSE_ON_COMMIT",
                                         "DEADLOCK_PRIORITY",
                                         "FIPS_FLAGGER",
                                         "FORCEPLAN",
                                         "IO",
                                         "NUMERIC_ROUNDABORT",
                                         "OFFSETS",
                                         "PROFILE",
                                         "QUERY_GOVERNOR_COST_LIMIT",
                                         "REMOTE_PROC_TRANSACTIONS",
                                         "SHOWPLAN_ALL",
                                         "SHOWPLAN_TEXT",
                                         "SHOWPLAN_XML",
                                         "STATISTICS",
                                         "TIME",
                                         "XML"};

struct OptionBit
{
    std::string_view option;
    std::uint64_t bit;
};

/// What @@OPTIONS shows.
constexpr OptionBit optionBits[] = {{"IMPLICIT_TRANSACTIONS", 2},
                                    {"CURSOR_CLOSE_ON_COMMIT", 4},
                                    {"ANSI_WARNINGS", 8},
                                    {"ANSI_PADDING", 16},
                                    {"ANSI_NULLS", 32},
                                    {"ARITHABORT", 64},
                                    {"ARITHIGNORE", 128},
                                    {"QUOTED_IDENTIFIER", 256},
                                    {"NOCOUNT", 512},
                                    {"ANSI_NULL_DFLT_ON", 1024},
                                    {"ANSI_NULL_DFLT_OFF", 2048},
                                    {"CONCAT_NULL_YIELDS_NULL", 4096},
                                    {"NUMERIC_ROUNDABORT", 8192},
                                    {"XACT_ABORT", 16384}};

std::optional<DateOrder> dateOrderOf(const std::string &name)
{
    static constexpr std::pair<std::string_view, DateOrder> orders[] = {
        {"MDY", DateOrder::MonthDayYear}, {"DMY", DateOrder::DayMonthYear}, {"YMD", DateOrder::YearMonthDay},
        {"YDM", DateOrder::YearDayMonth}, {"MYD", DateOrder::MonthYearDay}, {"DYM", DateOrder::DayYearMonth}};
    for (const auto &[text, order] : orders)
        if (text == name)
            return order;
    return {};
}

} // namespace

Interpreter::Flow Interpreter::run(const Ast::SetOption &node)
{
    Value number;
    std::string value = asciiUpper(node.value);
    if (node.expression) {
        const auto bound = binder().bindValue(*node.expression);
        number = evaluate(*bound);
        if (const auto *text = std::get_if<std::string>(&number))
            value = asciiUpper(*text);
    }
    for (const std::string &option : node.options)
        applyOption(option, value, number);
    m_context.rowCount = 0;
    return Flow::Next;
}

void Interpreter::applyOption(const std::string &option, const std::string &value, const Value &number)
{
    const bool on = value == "ON";
    const auto *integer = std::get_if<std::int64_t>(&number);
    for (const OptionBit &entry : optionBits)
        if (entry.option == option)
            m_context.optionBits = on ? m_context.optionBits | entry.bit : m_context.optionBits & ~entry.bit;
    if (option == "NOCOUNT")
        m_options.noCount = on;
    else if (option == "QUOTED_IDENTIFIER")
        m_options.quotedIdentifiers = on;
    else if (option == "XACT_ABORT")
        m_options.abortTransactions = on;
    else if (option == "IMPLICIT_TRANSACTIONS")
        m_options.implicitTransactions = on;
    else if (option == "CONCAT_NULL_YIELDS_NULL")
        m_context.concatNullYieldsNull = on;
    else if (option == "FMTONLY")
        m_options.formatOnly = on;
    else if (option == "PARSEONLY")
        m_options.parseOnly = on;
    else if (option == "NOEXEC")
        m_options.noExecute = on;
    else if (option == "ROWCOUNT" && integer)
        m_options.rowLimit = std::max<std::int64_t>(*integer, 0);
    else if (option == "TEXTSIZE" && integer)
        m_context.textSize = *integer < 0    ? 0x7FFFFFFF
                             : *integer == 0 ? 4096
                                             : static_cast<std::int32_t>(*integer);
    else if (option == "LOCK_TIMEOUT" && integer)
        m_options.lockTimeout =
            *integer < 0 ? std::nullopt : std::optional(std::chrono::milliseconds(*integer));
    else if (option == "DATEFIRST" && integer && *integer >= 1 && *integer <= 7)
        m_context.firstWeekday = static_cast<int>(*integer);
    else if (option == "DATEFORMAT" && dateOrderOf(value))
        m_context.dateOrder = *dateOrderOf(value);
    else if (option == "LANGUAGE") {
        if (value != "US_ENGLISH" && value != "ENGLISH" && value != "BRITISH")
            throw Errors::notSupported("the language " + value);
        m_context.dateOrder = value == "BRITISH" ? DateOrder::DayMonthYear : DateOrder::MonthDayYear;
        m_sink->message({5703,
                         1,
                         0,
                         std::string("Changed language setting to ") +
                             (value == "BRITISH" ? "British" : "us_english") + '.',
                         {},
                         m_line});
    } else if (option == "TRANSACTION ISOLATION LEVEL")
        m_options.isolation = value == "READ UNCOMMITTED"  ? IsolationLevel::ReadUncommitted
                              : value == "REPEATABLE READ" ? IsolationLevel::RepeatableRead
                              : value == "SERIALIZABLE"    ? IsolationLevel::Serializable
                                                           : IsolationLevel::ReadCommitted;
    else if (std::find(std::begin(accepted), std::end(accepted), option) == std::end(accepted))
        throw EngineError(195, 15, 5, '\'' + option + "' is not a recognized SET option.",
                          ErrorEffect::EndsBatch);
}

/// The full name of the table that takes identity values.
std::string Interpreter::nameOfIdentityInsert() const
{
    for (const DatabasePtr &database : m_state.databases.all())
        if (const TablePtr table = database->findTable(*m_options.identityInsertTable))
            return database->name() + '.' + table->schema + '.' + table->name;
    return {};
}

Interpreter::Flow Interpreter::run(const Ast::SetIdentityInsert &node)
{
    const Bound::TableScan scan = findTable(node.table);
    if (!scan.table->identity)
        throw EngineError(8106, 16, 1,
                          "Table '" + scan.table->name +
                              "' does not have the identity property. Cannot perform SET operation.");
    if (node.on && m_options.identityInsertTable && *m_options.identityInsertTable != scan.table->id)
        throw EngineError(8107, 16, 1,
                          "IDENTITY_INSERT is already ON for table '" + nameOfIdentityInsert() +
                              "'. Cannot perform SET operation for table '" + scan.table->name + "'.");
    if (node.on)
        m_options.identityInsertTable = scan.table->id;
    else if (m_options.identityInsertTable == scan.table->id)
        m_options.identityInsertTable.reset();
    return Flow::Next;
}

} // namespace SampleServer
