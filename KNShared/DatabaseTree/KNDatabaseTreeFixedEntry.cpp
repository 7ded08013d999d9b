#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"

bool KNDatabaseTreeFixedEntry::loadEntriesAsync(bool)
{
    const std::lock_guard lock(m_making);
    if (!childEntries())
        setChildEntries(makeEntries());
    return false;
}
