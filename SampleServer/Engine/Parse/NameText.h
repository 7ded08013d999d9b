#pragma once

#include "Engine/Parse/AstExpressions.h"

namespace SampleServer {

/// A name in text, as OBJECT_ID takes it, "[my schema].t"; without parts when the text is no name.
Ast::ObjectName nameFromText(const std::string &text);
/// A part of a name in brackets.
std::string quotedName(const std::string &name);

} // namespace SampleServer
