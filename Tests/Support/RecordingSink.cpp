#include "Support/RecordingSink.h"
#include "Engine/Functions/Conversion.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <chrono>

namespace SampleServer {

namespace {

std::string joined(std::span<const Value> values, const std::function<SqlType(std::size_t)> &typeOf)
{
    std::string line;
    for (std::size_t i = 0; i < values.size(); ++i)
        line += (i == 0 ? "" : " ") + shown(values[i], typeOf(i));
    return line;
}

std::string numbers(const std::vector<std::uint16_t> &list)
{
    std::string text;
    for (const auto number : list)
        text += ' ' + std::to_string(number);
    return text;
}

} // namespace

std::string shown(const Value &value, const SqlType &type)
{
    if (isNull(value))
        return "NULL";
    if (const auto *text = std::get_if<std::string>(&value))
        return '\'' + *text + '\'';
    if (const auto *bytes = std::get_if<Bytes>(&value))
        return "0x" + toHex(bytes->data(), bytes->size());
    if (const auto *variant = std::get_if<std::shared_ptr<const VariantValue>>(&value))
        return displayName((*variant)->type) + ':' + shown((*variant)->value, (*variant)->type);
    if (isMoney(type.id))
        return textOf(value, type, 2);
    if (isFloat(type.id)) {
        char buffer[40];
        std::snprintf(buffer, sizeof buffer, "%.15g", std::get<double>(value));
        return buffer;
    }
    if (type.id == TypeId::DateTime)
        return textOf(value, type, 121);
    return textOf(value, type, 0);
}

void RecordingSink::clear()
{
    m_log.clear();
    m_results.clear();
    m_compute.clear();
    m_messages.clear();
    m_ends.clear();
    m_rowCount = 0;
}

std::string RecordingSink::log() const
{
    std::string text;
    for (const std::string &line : m_log)
        text += line + '\n';
    return text;
}

std::string RecordingSink::scalar() const
{
    if (m_results.empty() || m_results[0].rows.empty())
        return m_messages.empty()
                   ? "no row"
                   : "message " + std::to_string(m_messages[0].number) + ": " + m_messages[0].text;
    return shown(m_results[0].rows[0][0], m_results[0].columns[0].type);
}

std::vector<std::int32_t> RecordingSink::errors() const
{
    std::vector<std::int32_t> found;
    for (const ServerMessage &message : m_messages)
        if (message.severity > 10)
            found.push_back(message.number);
    return found;
}

void RecordingSink::attention()
{
    const std::lock_guard lock(m_mutex);
    m_attention = true;
    m_asked.notify_all();
}

void RecordingSink::clearAttention()
{
    m_attention = false;
}

void RecordingSink::columns(const std::vector<ColumnInfo> &columns, const std::vector<std::uint16_t> &orderBy)
{
    std::string line = "columns";
    for (const ColumnInfo &column : columns) {
        line += (line == "columns" ? " " : ", ") + (column.name.empty() ? std::string("-") : column.name) +
                ' ' + displayName(column.type) + (column.nullable ? "" : " not null") +
                (column.identity ? " identity" : "") + (column.computed ? " computed" : "");
    }
    note(orderBy.empty() ? line : line + " order" + numbers(orderBy));
    m_results.push_back({columns, orderBy, {}});
}

void RecordingSink::computeColumns(std::uint16_t id, const std::vector<ComputeColumn> &columns,
                                   const std::vector<std::uint16_t> &byColumns)
{
    static constexpr const char *names[] = {"sum", "avg", "count", "min", "max"};
    std::string line = "compute columns " + std::to_string(id) + ':';
    for (const ComputeColumn &column : columns)
        line += ' ' + std::string(names[static_cast<int>(column.function)]) + '(' +
                std::to_string(column.operand) + ") " + displayName(column.type);
    note(byColumns.empty() ? line : line + " by" + numbers(byColumns));
    m_compute.push_back(columns);
}

void RecordingSink::row(std::span<const Value> values)
{
    if (onRow)
        onRow();
    ++m_rowCount;
    if (!m_keepRows)
        return;
    const auto &columns = m_results.back().columns;
    note("row " + joined(values, [&columns](std::size_t i) { return columns[i].type; }));
    m_results.back().rows.emplace_back(values.begin(), values.end());
}

void RecordingSink::computeRow(std::uint16_t id, std::span<const Value> values)
{
    const auto &columns = m_compute[id - 1U];
    note("compute " + std::to_string(id) + ": " +
         joined(values, [&columns](std::size_t i) { return columns[i].type; }));
}

void RecordingSink::endStatement(const StatementEnd &end)
{
    if (!end.rowCount && !end.error && end.currentCommand == 0)
        return; // neither rows nor a count: the tests of the wire count these
    note(std::string("end") + (end.rowCount ? ' ' + std::to_string(*end.rowCount) : "") +
         (end.error ? " error" : ""));
    m_ends.push_back(end);
}

void RecordingSink::message(const ServerMessage &message)
{
    note("message " + std::to_string(message.number) + ' ' + std::to_string(message.severity) + ' ' +
         std::to_string(message.state) + " line " + std::to_string(message.line) +
         (message.procedure.empty() ? "" : " of " + message.procedure) + ": " + message.text);
    m_messages.push_back(message);
}

void RecordingSink::returnStatus(std::int32_t status)
{
    note("status " + std::to_string(status));
}

void RecordingSink::returnValue(const std::string &name, const SqlType &type, const Value &value)
{
    note("output " + name + ' ' + shown(value, type));
}

void RecordingSink::endProcedure(const StatementEnd &end)
{
    note(end.error ? "end procedure error" : "end procedure");
}

void RecordingSink::databaseChanged(const std::string &oldName, const std::string &newName)
{
    note("database " + oldName + " -> " + newName);
}

void RecordingSink::transactionChanged(TransactionEvent event, std::uint64_t)
{
    note(event == TransactionEvent::Begun       ? "begun"
         : event == TransactionEvent::Committed ? "committed"
                                                : "rolled back");
}

void RecordingSink::flush()
{
    note("flush");
}

bool RecordingSink::attentionRequested()
{
    return m_attention;
}

bool RecordingSink::waitForAttention(std::int64_t milliseconds)
{
    std::unique_lock lock(m_mutex);
    return m_asked.wait_for(lock, std::chrono::milliseconds(milliseconds),
                            [this] { return m_attention.load(); });
}

} // namespace SampleServer
