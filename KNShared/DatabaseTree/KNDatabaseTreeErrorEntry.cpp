#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"

KNDatabaseTreeErrorEntry::KNDatabaseTreeErrorEntry(const KNError &error)
    : m_error(error)
{
    setDisplayName(error.localizedDescription());
}
