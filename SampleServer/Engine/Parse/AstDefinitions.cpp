#include "Engine/Parse/AstDefinitions.h"
#include "Engine/Parse/AstStatements.h"

namespace SampleServer::Ast {

ModuleDefinition::ModuleDefinition() = default;
ModuleDefinition::~ModuleDefinition() = default;

} // namespace SampleServer::Ast
