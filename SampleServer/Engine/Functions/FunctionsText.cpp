#include "Engine/EngineError.h"
#include "Engine/Functions/Conversion.h"
#include "Engine/Functions/FunctionResults.h"
#include "Engine/Functions/FunctionTable.h"
#include "Engine/Functions/MessageFormat.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

// Concatenation functions and phonetic codes.
namespace SampleServer::Functions {

using Bound::Operation;

namespace {

SqlType longText(const ArgumentList &arguments)
{
    for (const auto &argument : arguments)
        if (isUnicodeText(argument->type.id))
            return {TypeId::NVarChar, 4000, 0, 0};
    return {TypeId::VarChar, 8000, 0, 0};
}

SqlType soundResult(const ArgumentList &)
{
    return {TypeId::VarChar, 4, 0, 0};
}

Value concatWithSeparator(EvaluationContext &, const Operation &operation, Arguments a)
{
    const std::string separator = isNull(a[0]) ? std::string() : textOf(a[0], operation.arguments[0], 0);
    std::string result;
    bool isFirst = true;
    for (std::size_t i = 1; i < a.size(); ++i) {
        if (isNull(a[i]))
            continue;
        result += (isFirst ? std::string() : separator) + textOf(a[i], operation.arguments[i], 0);
        isFirst = false;
    }
    return utf16Substring(result, 0, static_cast<std::size_t>(operation.result.length));
}

Value translate(EvaluationContext &, const Operation &, Arguments a)
{
    const std::u16string from = toUtf16(text(a[1])), to = toUtf16(text(a[2]));
    if (from.size() != to.size())
        throw EngineError(9828, 16, 1,
                          "The second and third arguments of the TRANSLATE built-in function must contain an "
                          "equal number of characters.");
    std::u16string result = toUtf16(text(a[0]));
    for (char16_t &unit : result)
        if (const std::size_t at = from.find(unit); at != std::u16string::npos)
            unit = to[at];
    return toUtf8(result);
}

Value formattedMessage(EvaluationContext &, const Operation &operation, Arguments a)
{
    if (isNull(a[0]))
        return {};
    std::vector<MessageArgument> arguments;
    for (std::size_t i = 1; i < a.size(); ++i)
        arguments.push_back({operation.arguments[i], a[i]});
    return formatMessage(text(a[0]), arguments);
}

/// The first letter and three digits for the consonants that follow; equal adjacent digits count once.
std::string soundOf(const std::string &word)
{
    //                                    ABCDEFGHIJKLMNOPQRSTUVWXYZ
    static constexpr std::string_view codes = "01230120022455012623010202";
    const auto codeOf = [](char c) {
        const char upper = static_cast<char>(c & ~0x20);
        return upper >= 'A' && upper <= 'Z' ? codes[static_cast<std::size_t>(upper - 'A')] : ' ';
    };
    if (word.empty() || codeOf(word[0]) == ' ')
        return "0000";
    std::string sound(1, static_cast<char>(word[0] & ~0x20));
    char last = codeOf(word[0]);
    for (std::size_t i = 1; i < word.size() && sound.size() < 4; ++i) {
        const char code = codeOf(word[i]), upper = static_cast<char>(word[i] & ~0x20);
        if (code == ' ')
            break; // other characters end the code
        if (code != '0' && code != last)
            sound += code;
        if (upper != 'H' && upper != 'W') // these do not separate equal codes
            last = code;
    }
    return sound + std::string(4 - sound.size(), '0');
}

Value soundex(EvaluationContext &, const Operation &, Arguments a)
{
    return soundOf(text(a[0]));
}

Value difference(EvaluationContext &, const Operation &, Arguments a)
{
    const std::string left = soundOf(text(a[0])), right = soundOf(text(a[1]));
    std::int64_t same = 0;
    for (std::size_t i = 0; i < 4; ++i)
        same += left[i] == right[i];
    return same;
}

constexpr Builtin textBuiltins[] = {
    {"CONCAT_WS", 3, 254, "a", longText, concatWithSeparator, false},
    {"DIFFERENCE", 2, 2, "t", intResult, difference},
    {"FORMATMESSAGE", 1, 21, "ta", messageResult, formattedMessage, false},
    {"SOUNDEX", 1, 1, "t", soundResult, soundex},
    {"TRANSLATE", 3, 3, "t", longText, translate},
};

} // namespace

std::span<const Builtin> textFunctions()
{
    return textBuiltins;
}

} // namespace SampleServer::Functions
