#include "Database/VantorDatabaseClient.h"

VantorDatabaseClient::~VantorDatabaseClient() = default;

VantorSessionState VantorDatabaseClient::sessionStateAfter(const QString &) const
{
    return {};
}
