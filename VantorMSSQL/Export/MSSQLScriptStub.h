#pragma once

#include "Export/KNDatabaseScripter.h"

/// Stands for an object that others name before it can be created: its parameters and columns, but not its
/// text. The object itself then alters the stub.
namespace MSSQLScriptStub {

/// Views, procedures and inline functions have stubs.
bool isPossible(const KNScriptObject &object);
/// The statement that creates the stub; null if the object's columns may not be seen. Blocks on the server.
QString text(const KNScriptObject &object, const VantorDBC &details, KNError *error);
/// The condition that the object is still a stub. Pure.
QString condition(const QString &objectPath);

} // namespace MSSQLScriptStub
