#pragma once

#include "Engine/Storage/SqliteConnection.h"

#include <sqlite3.h>

namespace SampleServer {

/// Returns the connection for which an SQLite function was registered.
inline SqliteConnection &connectionOf(sqlite3_context *context)
{
    return *static_cast<SqliteConnection *>(sqlite3_user_data(context));
}

/// Runs `work` and catches its exceptions, which must not pass through SQLite.
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
