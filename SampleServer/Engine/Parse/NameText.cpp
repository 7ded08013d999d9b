#include "Engine/Parse/NameText.h"
#include "Engine/EngineError.h"
#include "Engine/Parse/Lexer.h"

namespace SampleServer {

Ast::ObjectName nameFromText(const std::string &text)
{
    Ast::ObjectName name;
    try {
        bool wantsPart = true;
        for (const Token &token : tokenize(text, true)) {
            const bool dot = token.kind == TokenKind::Symbol && token.value == ".";
            if (token.kind == TokenKind::End)
                break;
            if (dot && wantsPart)
                name.parts.emplace_back();
            else if (!dot)
                name.parts.push_back(token.value);
            wantsPart = dot;
        }
    } catch (const EngineError &) {
        return {};
    }
    return name.parts.size() > 4 ? Ast::ObjectName() : name;
}

std::string quotedName(const std::string &name)
{
    std::string text = "[";
    for (const char c : name)
        text += c == ']' ? std::string("]]") : std::string(1, c);
    return text + ']';
}

} // namespace SampleServer
