#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

KNSystemDatabaseQueryHelper::~KNSystemDatabaseQueryHelper() = default;
