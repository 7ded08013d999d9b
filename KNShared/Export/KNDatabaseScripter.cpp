#include "Export/KNDatabaseScripter.h"

KNDatabaseScripter::~KNDatabaseScripter() = default;
