#pragma once

#include "Engine/Parse/Lexer.h"

#include <span>
#include <string>

namespace SampleServer {

/// Formats an expression as the catalog shows it, in parentheses: ([Price]>(0)), (getdate()).
std::string definitionText(std::span<const Token> tokens);

} // namespace SampleServer
