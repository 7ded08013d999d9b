#pragma once

#include "Engine/Storage/SqliteConnection.h"

#include <sqlite3.h>

namespace SampleServer {

/// The connection that a function of SQLite was registered for.
inline SqliteConnection &connectionOf(sqlite3_context *context)
{
    return *static_cast<SqliteConnection *>(sqlite3_user_data(context));
}

/// Runs `work`, whose exceptions must not pass through SQLite.
template <typename Work>
void guarded(sqlite3_context *context, Work work)
{
    try {
        work();
    } catch (...) {
        connectionOf(context).fail(std::current_exception());
        sqlite3_result_error(context, "see the pending exception", -1);
    }
}

} // namespace SampleServer
