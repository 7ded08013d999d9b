#include "Database/DatabaseResultSet.h"

DatabaseResultSet::~DatabaseResultSet() = default;
