#include "Database/VantorDatabaseClient.h"

VantorDatabaseClient::~VantorDatabaseClient() = default;
