#pragma once

#include "Engine/EngineError.h"
#include "Types/SqlType.h"

#include <string_view>

namespace SampleServer::Errors {

// The server's errors with number, severity, state and text.

EngineError syntaxNear(std::string_view token);                        ///< 102
EngineError syntaxNearKeyword(std::string_view keyword);               ///< 156
EngineError unclosedQuote(std::string_view text);                      ///< 105
EngineError missingEndComment();                                       ///< 113
EngineError identifierTooLong(std::string_view name);                  ///< 103
EngineError emptyIdentifier();                                         ///< 1038
EngineError mustDeclareVariable(std::string_view name, int state = 2); ///< 137
EngineError variableAlreadyDeclared(std::string_view name);            ///< 134
EngineError nonBooleanCondition(std::string_view token);               ///< 4145
/// The error of a constraint that cannot be created, followed by 1750.
EngineError constraintFailed(const EngineError &error, int state);
EngineError notSupported(std::string_view construct); ///< 40000

EngineError invalidObject(std::string_view name);                              ///< 208
EngineError invalidColumn(std::string_view name);                              ///< 207
EngineError ambiguousColumn(std::string_view name);                            ///< 209
EngineError unboundIdentifier(std::string_view name);                          ///< 4104
EngineError unknownFunction(std::string_view name);                            ///< 195
EngineError argumentCount(std::string_view function, int count);               ///< 174
EngineError unknownType(std::string_view name, int position);                  ///< 2715
EngineError operandTypeClash(const SqlType &from, const SqlType &to);          ///< 206
EngineError invalidOperand(std::string_view type, std::string_view operation); ///< 8117
EngineError implicitConversion(TypeId from, TypeId to);                        ///< 257
EngineError explicitConversion(TypeId from, TypeId to);                        ///< 529

/// The maximum size of a created value, in bytes.
inline constexpr std::size_t LargestValue = 256U * 1024 * 1024;
EngineError outOfMemory(); ///< 701
/// Throws outOfMemory() if a value would exceed LargestValue.
void requireRoom(std::size_t bytes);
EngineError nameTaken(const std::string &name);      ///< 2714
EngineError noSuchDatabase(const std::string &name); ///< 911
EngineError stackLimit();                            ///< 8631

EngineError divideByZero();                                                                       ///< 8134
EngineError overflow(std::string_view from, std::string_view to, int state);                      ///< 8115
EngineError conversionFailed(std::string_view from, std::string_view value, std::string_view to); ///< 245
EngineError dataTypeConversion(std::string_view from, std::string_view to);                       ///< 8114

} // namespace SampleServer::Errors
