#include "Engine/Errors.h"
#include "Engine/Interpreter.h"

// The procedures that every server has.
namespace SampleServer {

std::optional<std::int32_t> Interpreter::callSystemProcedure(const Ast::ObjectName &,
                                                             std::vector<ProcedureArgument> &)
{
    return {};
}

} // namespace SampleServer
