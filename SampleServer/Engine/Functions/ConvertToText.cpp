#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Types/Guid.h"
#include "Types/HierarchyId.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <cmath>
#include <cstdio>

namespace SampleServer {

namespace {

/// Changes printf's exponent to at least three digits, as the server writes it.
std::string withLongExponent(std::string text)
{
    const std::size_t e = text.find('e');
    if (e != std::string::npos && text.size() - e - 2 < 3)
        text.insert(e + 2, 1, '0');
    return text;
}

std::string floatText(double value, bool isReal, int style)
{
    char buffer[64];
    switch (style) {
    case 1:
        std::snprintf(buffer, sizeof buffer, "%.7e", value);
        break;
    case 2:
        std::snprintf(buffer, sizeof buffer, "%.15e", value);
        break;
    case 3:
        std::snprintf(buffer, sizeof buffer, isReal ? "%.8e" : "%.16e", value);
        break;
    default:
        std::snprintf(buffer, sizeof buffer, "%.6g", value == 0 ? 0.0 : value);
        break;
    }
    return withLongExponent(buffer);
}

std::string moneyText(const Decimal &value, int style)
{
    std::string text = value.rescaled(style == 2 ? 4 : 2)->toString();
    if (style != 1)
        return text;
    const std::size_t first = text.starts_with('-') ? 1 : 0;
    for (std::size_t at = text.find('.'); at > first + 3;) {
        at -= 3;
        text.insert(at, 1, ',');
    }
    return text;
}

std::string binaryText(const Bytes &bytes, const SqlType &to, int style)
{
    if (style == 1)
        return "0x" + toHex(bytes.data(), bytes.size());
    if (style == 2)
        return toHex(bytes.data(), bytes.size());
    if (!isUnicodeText(to.id))
        return fromCodePage(bytes.data(), bytes.size());
    std::u16string units;
    for (std::size_t i = 0; i < bytes.size(); i += 2)
        units += static_cast<char16_t>(bytes[i] | (i + 1 < bytes.size() ? bytes[i + 1] << 8 : 0));
    return toUtf8(units);
}

EngineError noRoom(const Value &value, const SqlType &from, const SqlType &to)
{
    if (isMoney(from.id))
        return {234, 16, 2,
                std::string("There is insufficient result space to convert a money value to ") +
                    baseTypeName(to.id) + '.'};
    if (from.id == TypeId::UniqueIdentifier)
        return {8170, 16, 2, "Insufficient result space to convert uniqueidentifier value to char."};
    if (isFloat(from.id)) {
        char text[400];
        std::snprintf(text, sizeof text, "%f", std::get<double>(value));
        return {232, 16, 2,
                std::string("Arithmetic overflow error for type ") + baseTypeName(to.id) +
                    ", value = " + text + '.'};
    }
    return Errors::overflow(isInteger(from.id) ? "expression" : messageTypeName(from.id), baseTypeName(to.id),
                            isInteger(from.id) ? 2 : 5);
}

} // namespace

std::string textOf(const Value &value, const SqlType &from, int style)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return std::to_string(*integer);
    if (const auto *number = std::get_if<double>(&value))
        return floatText(*number, from.id == TypeId::Real, style);
    if (const auto *decimal = std::get_if<Decimal>(&value))
        return isMoney(from.id) ? moneyText(*decimal, style) : decimal->toString();
    if (const auto *guid = std::get_if<Guid>(&value))
        return toString(*guid);
    if (const auto *text = std::get_if<std::string>(&value))
        return *text;
    if (const auto *time = std::get_if<DateTimeValue>(&value)) {
        if (const auto text = formatDateTime(from, *time, style))
            return *text;
        throw EngineError(281, 16, 1,
                          std::to_string(style) + " is not a valid style number when converting from " +
                              baseTypeName(from.id) + " to a character string.");
    }
    return {};
}

Value convertToText(const Value &value, const SqlType &from, const SqlType &to, int style)
{
    std::string text;
    if (const auto *bytes = std::get_if<Bytes>(&value))
        text = from.id == TypeId::HierarchyId ? hierarchyIdToString(*bytes) : binaryText(*bytes, to, style);
    else
        text = textOf(value, from, style);
    if (!isUnicodeText(to.id))
        text = reducedToCodePage(text);
    if (isLegacyLob(to.id) || to.length == SqlType::Max)
        return text;
    const std::size_t length = utf16Length(text), limit = static_cast<std::size_t>(to.length);
    if (length > limit) {
        const bool mayBeCut =
            isText(from.id) || isBinary(from.id) || isDateTime(from.id) || from.id == TypeId::Xml;
        if (isInteger(from.id) && from.id != TypeId::BigInt && isAnsiText(to.id))
            text = "*";
        else if (mayBeCut)
            text = utf16Substring(text, 0, limit);
        else
            throw noRoom(value, from, to);
    }
    if (isFixedLength(to.id) && length < limit)
        text.append(limit - length, ' ');
    else if (isFixedLength(to.id) && text == "*")
        text.append(limit - 1, ' ');
    return text;
}

} // namespace SampleServer
