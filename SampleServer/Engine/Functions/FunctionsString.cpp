#include "Engine/Errors.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/FunctionResults.h"
#include "Engine/Functions/FunctionTable.h"
#include "Engine/Functions/XmlRows.h"
#include "Types/Collation.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <cmath>

namespace SampleServer::Functions {

using Bound::Operation;

namespace {

std::int64_t integer(const Value &value)
{
    return std::get<std::int64_t>(value);
}

/// Truncates the text to the length of the result's type.
Value cut(std::string value, const SqlType &type)
{
    if (type.length == SqlType::Max || value.size() <= static_cast<std::size_t>(type.length))
        return value;
    return utf16Substring(value, 0, static_cast<std::size_t>(type.length));
}

// Result types

SqlType lengthResult(const ArgumentList &arguments)
{
    return {arguments[0]->type.length == SqlType::Max ? TypeId::BigInt : TypeId::Int, 0, 0, 0};
}

/// A position in the searched argument.
template <std::size_t searched>
SqlType placeResult(const ArgumentList &arguments)
{
    return {arguments[searched]->type.length == SqlType::Max ? TypeId::BigInt : TypeId::Int, 0, 0, 0};
}

/// Variable-length text of the first argument's type and length.
SqlType varyingLikeFirst(const ArgumentList &arguments)
{
    const SqlType &type = arguments[0]->type;
    const int length = isLegacyLob(type.id) ? SqlType::Max : type.length;
    if (isBinary(type.id))
        return textOrBinaryType(TypeId::VarBinary, length);
    return textOrBinaryType(isUnicodeText(type.id) ? TypeId::NVarChar : TypeId::VarChar, length);
}

SqlType longestLikeFirst(const ArgumentList &arguments)
{
    SqlType type = varyingLikeFirst(arguments);
    for (const auto &argument : arguments)
        if (isUnicodeText(argument->type.id))
            type.id = TypeId::NVarChar;
    if (type.length != SqlType::Max)
        type.length = longestOrdinaryLength(type.id);
    return type;
}

SqlType concatResult(const ArgumentList &arguments)
{
    bool unicode = false;
    long long length = 0;
    for (const auto &argument : arguments) {
        unicode = unicode || isUnicodeText(argument->type.id);
        const bool isMax = argument->type.length == SqlType::Max || isLegacyLob(argument->type.id);
        length = isMax || length == SqlType::Max
                     ? SqlType::Max
                     : length + (isText(argument->type.id) ? argument->type.length : 40);
    }
    const TypeId id = unicode ? TypeId::NVarChar : TypeId::VarChar;
    if (length == SqlType::Max)
        return {id, SqlType::Max, 0, 0};
    return {id, static_cast<int>(std::min<long long>(length, longestOrdinaryLength(id))), 0, 0};
}

template <TypeId id, int length>
SqlType textResult(const ArgumentList &)
{
    return {id, length, 0, 0};
}

// Functions

Value len(EvaluationContext &, const Operation &, Arguments a)
{
    return static_cast<std::int64_t>(utf16Length(trimmedRight(text(a[0]))));
}

Value dataLength(EvaluationContext &, const Operation &operation, Arguments a)
{
    const SqlType &type = operation.arguments[0];
    if (type.id == TypeId::SqlVariant) {
        const VariantValue &inner = *std::get<std::shared_ptr<const VariantValue>>(a[0]);
        Operation of = operation;
        of.arguments[0] = inner.type;
        EvaluationContext unused;
        return dataLength(unused, of, Arguments(&inner.value, 1));
    }
    if (const auto *string = std::get_if<std::string>(&a[0])) {
        const auto units = static_cast<std::int64_t>(utf16Length(*string));
        return isAnsiText(type.id) ? units : 2 * units;
    }
    if (const auto *bytes = std::get_if<Bytes>(&a[0]))
        return static_cast<std::int64_t>(bytes->size());
    switch (type.id) {
    case TypeId::Bit:
    case TypeId::TinyInt:
        return std::int64_t{1};
    case TypeId::SmallInt:
        return std::int64_t{2};
    case TypeId::Int:
    case TypeId::Real:
    case TypeId::SmallMoney:
    case TypeId::SmallDateTime:
        return std::int64_t{4};
    case TypeId::Date:
        return std::int64_t{3};
    case TypeId::Time:
        return std::int64_t{type.scale <= 2 ? 3 : type.scale <= 4 ? 4 : 5};
    case TypeId::DateTime2:
        return std::int64_t{type.scale <= 2 ? 6 : type.scale <= 4 ? 7 : 8};
    case TypeId::DateTimeOffset:
        return std::int64_t{type.scale <= 2 ? 8 : type.scale <= 4 ? 9 : 10};
    case TypeId::Decimal:
        return std::int64_t{type.precision <= 9    ? 5
                            : type.precision <= 19 ? 9
                            : type.precision <= 28 ? 13
                                                   : 17};
    case TypeId::UniqueIdentifier:
        return std::int64_t{16};
    default:
        return std::int64_t{8};
    }
}

EngineError invalidLength(const char *function)
{
    return {536, 16, 1, std::string("Invalid length parameter passed to the ") + function + " function."};
}

Value left(EvaluationContext &, const Operation &, Arguments a)
{
    if (integer(a[1]) < 0)
        throw invalidLength("left");
    return utf16Substring(text(a[0]), 0, static_cast<std::size_t>(integer(a[1])));
}

Value right(EvaluationContext &, const Operation &, Arguments a)
{
    if (integer(a[1]) < 0)
        throw invalidLength("right");
    const std::size_t length = utf16Length(text(a[0])), count = static_cast<std::size_t>(integer(a[1]));
    return count >= length ? a[0] : Value(utf16Substring(text(a[0]), length - count, count));
}

Value substring(EvaluationContext &, const Operation &, Arguments a)
{
    const std::int64_t count = integer(a[2]);
    if (count < 0)
        throw EngineError(537, 16, 2, "Invalid length parameter passed to the LEFT or SUBSTRING function.");
    const std::int64_t start = integer(a[1]) - 1;
    const std::int64_t first = std::max<std::int64_t>(start, 0);
    const auto length = static_cast<std::size_t>(std::max<std::int64_t>(start + count - first, 0));
    if (const auto *bytes = std::get_if<Bytes>(&a[0])) {
        const auto from = std::min(static_cast<std::size_t>(first), bytes->size());
        const auto size = std::min(length, bytes->size() - from);
        return Bytes(bytes->begin() + static_cast<std::ptrdiff_t>(from),
                     bytes->begin() + static_cast<std::ptrdiff_t>(from + size));
    }
    return utf16Substring(text(a[0]), static_cast<std::size_t>(first), length);
}

Value upper(EvaluationContext &, const Operation &, Arguments a)
{
    return toUpper(text(a[0]));
}
Value lower(EvaluationContext &, const Operation &, Arguments a)
{
    return toLower(text(a[0]));
}
Value rtrim(EvaluationContext &, const Operation &, Arguments a)
{
    return std::string(trimmedRight(text(a[0])));
}
Value trim(EvaluationContext &, const Operation &, Arguments a)
{
    if (a.size() == 1)
        return std::string(trimmed(text(a[0])));
    // TRIM(characters FROM text) passes the text first.
    const std::u16string subject = toUtf16(text(a[0])), unwanted = toUtf16(text(a[1]));
    const std::size_t first = subject.find_first_not_of(unwanted);
    if (first == std::u16string::npos)
        return std::string();
    return toUtf8(subject.substr(first, subject.find_last_not_of(unwanted) - first + 1));
}

Value ltrim(EvaluationContext &, const Operation &, Arguments a)
{
    const std::string &value = text(a[0]);
    return value.substr(std::min(value.find_first_not_of(' '), value.size()));
}

Value replace(EvaluationContext &, const Operation &operation, Arguments a)
{
    const std::u16string subject = toUtf16(text(a[0])), pattern = toUtf16(text(a[1])),
                         with = toUtf16(text(a[2]));
    std::u16string result;
    std::size_t at = 0;
    for (std::size_t found; (found = findText(subject, pattern, at)) != std::u16string::npos;
         at = found + pattern.size()) {
        result.append(subject, at, found - at);
        result += with;
    }
    result.append(subject, at, std::u16string::npos);
    return cut(toUtf8(result), operation.result);
}

Value replicate(EvaluationContext &, const Operation &operation, Arguments a)
{
    const std::int64_t count = integer(a[1]);
    if (count < 0)
        return {};
    // The limits keep a mistyped argument from exhausting memory.
    const std::size_t limit = operation.result.length == SqlType::Max
                                  ? 0x7FFFFFFF
                                  : 4 * static_cast<std::size_t>(operation.result.length);
    const std::string &part = text(a[0]);
    if (part.size() > 0 && static_cast<std::size_t>(count) > Errors::LargestValue / part.size())
        Errors::requireRoom(limit);
    std::string result;
    result.reserve(std::min(limit, part.size() * static_cast<std::size_t>(count)));
    for (std::int64_t i = 0; i < count && !part.empty() && result.size() < limit; ++i)
        result += part;
    return cut(std::move(result), operation.result);
}

Value space(EvaluationContext &, const Operation &, Arguments a)
{
    if (integer(a[0]) < 0)
        return {};
    return std::string(static_cast<std::size_t>(std::min<std::int64_t>(integer(a[0]), 8000)), ' ');
}

Value reverse(EvaluationContext &, const Operation &, Arguments a)
{
    std::u32string points;
    for (std::size_t at = 0; at < text(a[0]).size();)
        points += nextCodePoint(text(a[0]), at);
    std::string result;
    for (auto it = points.rbegin(); it != points.rend(); ++it)
        appendUtf8(result, *it);
    return result;
}

Value charIndex(EvaluationContext &, const Operation &, Arguments a)
{
    const std::int64_t start = a.size() > 2 ? std::max<std::int64_t>(integer(a[2]) - 1, 0) : 0;
    const std::size_t found =
        findText(toUtf16(text(a[1])), toUtf16(text(a[0])), static_cast<std::size_t>(start));
    return found == std::u16string::npos ? std::int64_t{0} : static_cast<std::int64_t>(found) + 1;
}

Value patIndex(EvaluationContext &, const Operation &, Arguments a)
{
    return std::int64_t{patternIndex(text(a[1]), text(a[0]))};
}

Value str(EvaluationContext &, const Operation &, Arguments a)
{
    const std::int64_t length = a.size() > 1 ? integer(a[1]) : 10,
                       decimals = a.size() > 2 ? integer(a[2]) : 0;
    if (length < 0 || length > 8000 || decimals < 0)
        return {};
    char buffer[400];
    const int size =
        std::snprintf(buffer, sizeof buffer, "%*.*f", static_cast<int>(std::min<std::int64_t>(length, 380)),
                      static_cast<int>(std::min<std::int64_t>(decimals, 16)), std::get<double>(a[0]));
    const std::string digits(buffer, static_cast<std::size_t>(std::min(size, 399)));
    const std::size_t point = std::min(digits.find('.'), digits.size());
    if (point > static_cast<std::size_t>(length))
        return std::string(static_cast<std::size_t>(length), '*');
    return digits.substr(0, static_cast<std::size_t>(length));
}

Value stuff(EvaluationContext &, const Operation &operation, Arguments a)
{
    if (isNull(a[0]) || isNull(a[1]) || isNull(a[2]))
        return {};
    const std::u16string subject = toUtf16(text(a[0]));
    const std::int64_t start = integer(a[1]), count = integer(a[2]);
    if (start < 1 || start > static_cast<std::int64_t>(subject.size()) || count < 0)
        return {};
    std::u16string result = subject;
    result.replace(static_cast<std::size_t>(start - 1), static_cast<std::size_t>(count),
                   isNull(a[3]) ? std::u16string() : toUtf16(text(a[3])));
    return cut(toUtf8(result), operation.result);
}

Value ascii(EvaluationContext &, const Operation &, Arguments a)
{
    const auto bytes = toCodePage(text(a[0]));
    return bytes.empty() ? Value() : Value(std::int64_t{bytes[0]});
}

Value unicode(EvaluationContext &, const Operation &, Arguments a)
{
    const std::u16string units = toUtf16(text(a[0]));
    return units.empty() ? Value() : Value(std::int64_t{units[0]});
}

Value character(EvaluationContext &, const Operation &, Arguments a)
{
    if (integer(a[0]) < 0 || integer(a[0]) > 255)
        return {};
    const auto byte = static_cast<std::uint8_t>(integer(a[0]));
    return fromCodePage(&byte, 1);
}

Value nationalCharacter(EvaluationContext &, const Operation &, Arguments a)
{
    if (integer(a[0]) < 0 || integer(a[0]) > 0xFFFF)
        return {};
    std::string result;
    appendUtf8(result, static_cast<char32_t>(integer(a[0])));
    return result;
}

Value quoteName(EvaluationContext &, const Operation &, Arguments a)
{
    const std::string quote = a.size() > 1 ? text(a[1]) : "[";
    const std::string_view known = "[]'\"(){}<>`";
    if (quote.size() != 1 || known.find(quote[0]) == std::string_view::npos || utf16Length(text(a[0])) > 128)
        return {};
    static constexpr std::pair<char, char> pairs[] = {{'[', ']'}, {'(', ')'}, {'{', '}'}, {'<', '>'}};
    char open = quote[0], close = quote[0];
    for (const auto &[first, last] : pairs)
        if (quote[0] == first || quote[0] == last) {
            open = first;
            close = last;
        }
    std::string result(1, open);
    for (const char c : text(a[0])) {
        result += c;
        if (c == close)
            result += c;
    }
    return result + close;
}

Value concat(EvaluationContext &, const Operation &operation, Arguments a)
{
    std::string result;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!isNull(a[i]))
            result += textOf(a[i], operation.arguments[i], 0);
    Errors::requireRoom(result.size());
    return cut(std::move(result), operation.result);
}

} // namespace

Value xmlText(EvaluationContext &, const Operation &, Arguments a)
{
    return textOfXml(text(a[0]));
}

namespace {

constexpr Builtin stringBuiltins[] = {
    {"ASCII", 1, 1, "t", intResult, ascii},
    {"CHAR", 1, 1, "i", textResult<TypeId::Char, 1>, character},
    {"CHARINDEX", 2, 3, "tti", placeResult<1>, charIndex},
    {"CONCAT", 2, 254, "a", concatResult, concat, false},
    {"DATALENGTH", 1, 1, "a", lengthResult, dataLength},
    {"LEFT", 2, 2, "ti", varyingLikeFirst, left},
    {"LEN", 1, 1, "t", lengthResult, len},
    {"LOWER", 1, 1, "t", varyingLikeFirst, lower},
    {"LTRIM", 1, 1, "t", varyingLikeFirst, ltrim},
    {"NCHAR", 1, 1, "i", textResult<TypeId::NChar, 1>, nationalCharacter},
    {"PATINDEX", 2, 2, "tt", placeResult<1>, patIndex},
    {"QUOTENAME", 1, 2, "tt", textResult<TypeId::NVarChar, 258>, quoteName},
    {"REPLACE", 3, 3, "ttt", longestLikeFirst, replace},
    {"REPLICATE", 2, 2, "ti", longestLikeFirst, replicate},
    {"REVERSE", 1, 1, "t", varyingLikeFirst, reverse},
    {"RIGHT", 2, 2, "ti", varyingLikeFirst, right},
    {"RTRIM", 1, 1, "t", varyingLikeFirst, rtrim},
    {"SPACE", 1, 1, "i", textResult<TypeId::VarChar, 8000>, space},
    {"STR", 1, 3, "fii", textResult<TypeId::VarChar, 8000>, str},
    {"STUFF", 4, 4, "tiit", longestLikeFirst, stuff, false},
    {"SUBSTRING", 3, 3, "aii", varyingLikeFirst, substring},
    {"TRIM", 1, 2, "t", varyingLikeFirst, trim},
    {"UNICODE", 1, 1, "t", intResult, unicode},
    {"UPPER", 1, 1, "t", varyingLikeFirst, upper},
};

} // namespace

std::span<const Builtin> stringFunctions()
{
    return stringBuiltins;
}

} // namespace SampleServer::Functions
