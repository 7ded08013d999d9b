#include "Engine/Functions/MessageFormat.h"
#include "Engine/EngineError.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <algorithm>

namespace SampleServer {

namespace {

/// The server truncates longer messages and appends three dots.
constexpr std::size_t MaxMessageLength = 2047;

/// The parts of a placeholder such as "%-8.3d".
struct Placeholder
{
    std::string flags;
    int width = 0;
    int precision = -1;
    char conversion = 0;
};

class MessageFormatter
{
public:
    MessageFormatter(const std::string &format, const std::vector<MessageArgument> &arguments)
        : m_format(format)
        , m_arguments(arguments)
    {
    }

    std::string run()
    {
        std::string result;
        while (m_at < m_format.size()) {
            const char c = m_format[m_at++];
            if (c != '%')
                result += c;
            else if (m_at < m_format.size() && m_format[m_at] == '%')
                result += m_format[m_at++];
            else
                result += filled(read());
        }
        if (utf16Length(result) > MaxMessageLength)
            result = utf16Substring(result, 0, MaxMessageLength - 3) + "...";
        return result;
    }

private:
    Placeholder read()
    {
        const std::size_t start = m_at;
        Placeholder placeholder;
        const auto current = [this] { return m_at < m_format.size() ? m_format[m_at] : '\0'; };
        while (std::string_view("-+ #0").find(current()) != std::string_view::npos && current() != '\0')
            placeholder.flags += m_format[m_at++];
        placeholder.width = readNumber();
        if (current() == '.') {
            ++m_at;
            placeholder.precision = readNumber();
        }
        if (m_format.compare(m_at, 3, "I64") == 0)
            m_at += 3;
        while (current() == 'l' || current() == 'h')
            ++m_at;
        placeholder.conversion = current();
        if (placeholder.conversion == '\0' ||
            std::string_view("sdiuxXo").find(placeholder.conversion) == std::string_view::npos)
            throw EngineError(2787, 16, 1,
                              "Invalid format specification: '%" + m_format.substr(start, m_at - start + 1) +
                                  "'.");
        ++m_at;
        return placeholder;
    }

    int readNumber()
    {
        if (m_at < m_format.size() && m_format[m_at] == '*') {
            ++m_at;
            const Value &value = next().value;
            const auto *number = std::get_if<std::int64_t>(&value);
            return number ? static_cast<int>(std::clamp<std::int64_t>(*number, 0, 1000)) : 0;
        }
        int number = 0;
        while (m_at < m_format.size() && m_format[m_at] >= '0' && m_format[m_at] <= '9')
            number = std::min(number * 10 + (m_format[m_at++] - '0'), 1000);
        return number;
    }

    const MessageArgument &next()
    {
        static const MessageArgument missing;
        return m_argument < m_arguments.size() ? m_arguments[m_argument++] : missing;
    }

    std::string filled(const Placeholder &placeholder)
    {
        const MessageArgument &argument = next();
        if (isNull(argument.value))
            return padded("(null)", placeholder);
        if (placeholder.conversion == 's') {
            if (const auto *text = std::get_if<std::string>(&argument.value))
                return padded(placeholder.precision < 0
                                  ? *text
                                  : utf16Substring(*text, 0, static_cast<std::size_t>(placeholder.precision)),
                              placeholder);
        } else if (const auto *number = std::get_if<std::int64_t>(&argument.value)) {
            return printed(*number, argument.type, placeholder);
        }
        throw EngineError(2786, 16, 1,
                          "The data type of substitution parameter " + std::to_string(m_argument) +
                              " does not match the expected type of the format specification.");
    }

    static std::string printed(std::int64_t number, const SqlType &type, const Placeholder &placeholder)
    {
        std::string format = '%' + placeholder.flags + std::to_string(placeholder.width);
        if (placeholder.width == 0)
            format = '%' + placeholder.flags;
        if (placeholder.precision >= 0)
            format += '.' + std::to_string(placeholder.precision);
        // A negative int shows as 32 bits in %x and %u, not as 64.
        const bool isUnsigned = placeholder.conversion != 'd' && placeholder.conversion != 'i';
        if (isUnsigned && type.id != TypeId::BigInt)
            number &= 0xFFFFFFFF;
        format += std::string("ll") + placeholder.conversion;
        char buffer[2100];
        // The format was checked letter by letter when it was read.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::snprintf(buffer, sizeof buffer, format.c_str(), static_cast<long long>(number));
#pragma GCC diagnostic pop
        return buffer;
    }

    static std::string padded(std::string text, const Placeholder &placeholder)
    {
        const std::size_t length = utf16Length(text), width = static_cast<std::size_t>(placeholder.width);
        if (length >= width)
            return text;
        const std::string blanks(width - length, ' ');
        return placeholder.flags.find('-') == std::string::npos ? blanks + text : text + blanks;
    }

    const std::string &m_format;
    const std::vector<MessageArgument> &m_arguments;
    std::size_t m_at = 0;
    std::size_t m_argument = 0;
};

} // namespace

std::string formatMessage(const std::string &format, const std::vector<MessageArgument> &arguments)
{
    return MessageFormatter(format, arguments).run();
}

} // namespace SampleServer
