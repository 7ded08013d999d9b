#include "Engine/Run/OptionExecutor.h"
#include "Engine/Errors.h"
#include "Types/Text.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// Options that are parsed and ignored: they control features that this server does not have, or it always
/// behaves as with their modern setting.
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

/// The value of @@OPTIONS.
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

void OptionExecutor::run(const Ast::SetOption &node)
{
    Value number;
    std::string value = asciiUpper(node.value);
    if (node.expression) {
        const auto bound = m_queries.binder().bindValue(*node.expression);
        number = m_queries.evaluate(*bound);
        if (const auto *text = std::get_if<std::string>(&number))
            value = asciiUpper(*text);
    }
    for (const std::string &option : node.options)
        applyOption(option, value, number);
    m_session.evaluation.rowCount = 0;
}

void OptionExecutor::applyOption(const std::string &option, const std::string &value, const Value &number)
{
    for (const OptionBit &entry : optionBits)
        if (entry.option == option) {
            std::uint64_t &bits = m_session.evaluation.optionBits;
            bits = value == "ON" ? bits | entry.bit : bits & ~entry.bit;
        }
    const auto *integer = std::get_if<std::int64_t>(&number);
    if (applyWord(option, value) || (integer && applyNumber(option, *integer)))
        return;
    if (std::find(std::begin(accepted), std::end(accepted), option) == std::end(accepted))
        throw EngineError(195, 15, 5, '\'' + option + "' is not a recognized SET option.",
                          ErrorEffect::EndsBatch);
}

/// Whether the option takes a keyword.
bool OptionExecutor::applyWord(const std::string &option, const std::string &value)
{
    SessionOptions &options = m_session.options;
    const std::pair<std::string_view, bool *> switches[] = {
        {"NOCOUNT", &options.noCount},
        {"QUOTED_IDENTIFIER", &options.quotedIdentifiers},
        {"XACT_ABORT", &options.abortTransactions},
        {"IMPLICIT_TRANSACTIONS", &options.implicitTransactions},
        {"CONCAT_NULL_YIELDS_NULL", &m_session.evaluation.concatNullYieldsNull},
        {"FMTONLY", &options.formatOnly},
        {"PARSEONLY", &options.parseOnly}, // known since the batch was parsed
        {"NOEXEC", &options.noExecute}};
    for (const auto &[name, flag] : switches)
        if (name == option) {
            *flag = value == "ON";
            return true;
        }
    if (option == "DATEFORMAT" && dateOrderOf(value))
        m_session.evaluation.dateOrder = *dateOrderOf(value);
    else if (option == "LANGUAGE")
        applyLanguage(value);
    else if (option == "TRANSACTION ISOLATION LEVEL")
        options.isolation = value == "READ UNCOMMITTED"  ? IsolationLevel::ReadUncommitted
                            : value == "REPEATABLE READ" ? IsolationLevel::RepeatableRead
                            : value == "SERIALIZABLE"    ? IsolationLevel::Serializable
                                                         : IsolationLevel::ReadCommitted;
    else
        return false;
    return true;
}

/// Whether the option takes a number, and sets it.
bool OptionExecutor::applyNumber(const std::string &option, std::int64_t number)
{
    constexpr std::int32_t LongestText = 0x7FFFFFFF, DefaultText = 4096; // bytes
    if (option == "ROWCOUNT")
        m_session.options.rowLimit = std::max<std::int64_t>(number, 0);
    else if (option == "TEXTSIZE")
        m_session.evaluation.textSize = number < 0    ? LongestText
                                        : number == 0 ? DefaultText
                                                      : static_cast<std::int32_t>(number);
    else if (option == "LOCK_TIMEOUT")
        m_session.options.lockTimeout =
            number < 0 ? std::nullopt : std::optional(std::chrono::milliseconds(number));
    else if (option == "DATEFIRST" && number >= 1 && number <= 7)
        m_session.evaluation.firstWeekday = static_cast<int>(number);
    else
        return false;
    return true;
}

void OptionExecutor::applyLanguage(const std::string &language)
{
    if (language != "US_ENGLISH" && language != "ENGLISH" && language != "BRITISH")
        throw Errors::notSupported("the language " + language);
    const bool british = language == "BRITISH";
    m_session.evaluation.dateOrder = british ? DateOrder::DayMonthYear : DateOrder::MonthDayYear;
    ServerMessage message;
    message.number = 5703;
    message.state = 1;
    message.text = std::string("Changed language setting to ") + (british ? "British." : "us_english.");
    message.line = m_session.line;
    m_session.sink->message(message);
}

/// The full name of the table with IDENTITY_INSERT on.
std::string OptionExecutor::nameOfIdentityInsert() const
{
    for (const DatabasePtr &database : m_session.state.databases.all())
        if (const TablePtr table = database->findTable(*m_session.options.identityInsertTable))
            return database->name() + '.' + table->schema + '.' + table->name;
    return {};
}

void OptionExecutor::run(const Ast::SetIdentityInsert &node)
{
    const Bound::TableScan scan = m_names.findTable(node.table);
    if (!scan.table->identity)
        throw EngineError(8106, 16, 1,
                          "Table '" + scan.table->name +
                              "' does not have the identity property. Cannot perform SET operation.");
    if (node.on && m_session.options.identityInsertTable &&
        *m_session.options.identityInsertTable != scan.table->id)
        throw EngineError(8107, 16, 1,
                          "IDENTITY_INSERT is already ON for table '" + nameOfIdentityInsert() +
                              "'. Cannot perform SET operation for table '" + scan.table->name + "'.");
    if (node.on)
        m_session.options.identityInsertTable = scan.table->id;
    else if (m_session.options.identityInsertTable == scan.table->id)
        m_session.options.identityInsertTable.reset();
}

} // namespace SampleServer
