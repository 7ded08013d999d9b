#pragma once

#include "Engine/Parse/AstExpressions.h"

namespace SampleServer {

/// Parses a name in the format of OBJECT_ID, "[my schema].t"; without parts if the text is not a name.
Ast::ObjectName nameFromText(const std::string &text);
/// Returns a part of a name in brackets.
std::string quotedName(const std::string &name);

} // namespace SampleServer
