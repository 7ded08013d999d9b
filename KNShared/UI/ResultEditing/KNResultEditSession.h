#pragma once

#include "Database/VantorTabConnection.h"

#include <functional>

/// The session in which a result was read and its changes are applied. On the UI thread.
struct KNResultEditSession
{
    VantorDBCPtr details = nullptr; ///< with the database that the result was read from
    QString database = {};          ///< its name as the session reports it
    /// The tab's connection.
    std::function<std::shared_ptr<VantorTabConnection>()> connection = {};
    /// Reserves the connection until the last copy of the result is gone; null while something else uses it.
    std::function<std::shared_ptr<void>()> lease = {};
    /// Reports whether a transaction that was open before the changes still is.
    std::function<void(bool isOpen)> transactionChanged = {};
};
