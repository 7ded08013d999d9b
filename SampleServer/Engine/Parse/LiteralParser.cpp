#include "Engine/Parse/LiteralParser.h"
#include "Engine/Errors.h"
#include "Engine/Parse/Parsers.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <charconv>

namespace SampleServer {

using namespace Ast;

namespace {

/// The type of a number with a decimal point, or of an integer too large for int: as many digits as written.
std::optional<Literal> decimalLiteral(const std::string &digits)
{
    const auto value = Decimal::fromString(digits);
    if (!value)
        return {};
    const int precision =
        std::max(value->magnitude == 0 ? 1 : digitCount(value->magnitude), static_cast<int>(value->scale));
    return Literal{{TypeId::Decimal, 0, static_cast<std::uint8_t>(std::max(precision, 1)), value->scale},
                   *value};
}

std::optional<Literal> integerLiteral(const std::string &digits)
{
    std::int32_t value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc())
        return Literal{{TypeId::Int, 0, 0, 0}, std::int64_t{value}};
    return decimalLiteral(digits);
}

Literal floatLiteral(const std::string &digits)
{
    double value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return {{TypeId::Float, 0, 0, 0}, value};
}

std::optional<Literal> moneyLiteral(const std::string &digits)
{
    const auto value = Decimal::fromString(digits.empty() || digits == "-" || digits == "+" ? "0" : digits);
    const auto scaled = value ? value->rescaled(4) : value;
    if (!scaled)
        return {};
    return Literal{{TypeId::Money, 0, 0, 0}, *scaled};
}

Literal binaryLiteral(const std::string &digits)
{
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(hexDigit(digits[i]) * 16 + hexDigit(digits[i + 1])));
    const auto length = static_cast<long long>(bytes.size());
    return {textOrBinaryType(TypeId::VarBinary, length), std::move(bytes)};
}

Literal textLiteral(const std::string &text, TypeId id)
{
    const std::string reduced = id == TypeId::VarChar ? reducedToCodePage(text) : text;
    return {textOrBinaryType(id, static_cast<long long>(utf16Length(reduced))), reduced};
}

} // namespace

ExpressionPtr LiteralParser::parseLiteral()
{
    const Token &token = current();
    std::optional<Literal> literal;
    switch (token.kind) {
    case TokenKind::Integer:
        literal = integerLiteral(token.value);
        break;
    case TokenKind::Decimal:
        literal = decimalLiteral(token.value);
        break;
    case TokenKind::Float:
        literal = floatLiteral(token.value);
        break;
    case TokenKind::Money:
        literal = moneyLiteral(token.value);
        break;
    case TokenKind::Binary:
        literal = binaryLiteral(token.value);
        break;
    case TokenKind::String:
        literal = textLiteral(token.value, TypeId::VarChar);
        break;
    case TokenKind::UnicodeString:
        literal = textLiteral(token.value, TypeId::NVarChar);
        break;
    default:
        failHere();
    }
    if (!literal)
        fail(EngineError(1007, 15, 1,
                         "The number '" + token.value +
                             "' is out of the range for numeric representation (maximum precision 38).",
                         ErrorEffect::EndsBatch),
             token.line);
    advance();
    return make(std::move(*literal));
}

} // namespace SampleServer
