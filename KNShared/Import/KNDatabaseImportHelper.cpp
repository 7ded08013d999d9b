#include "Import/KNDatabaseImportHelper.h"

KNDatabaseImportHelper::KNDatabaseImportHelper(const VantorDBC &details)
    : m_details(details.copy())
{
}

KNDatabaseImportHelper::~KNDatabaseImportHelper() = default;
