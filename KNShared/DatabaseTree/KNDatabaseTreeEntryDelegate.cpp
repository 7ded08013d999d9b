#include "DatabaseTree/KNDatabaseTreeEntryDelegate.h"

KNDatabaseTreeEntryDelegate::~KNDatabaseTreeEntryDelegate() = default;

void KNDatabaseTreeEntryDelegate::databaseTreeEntryDidFailLoading(
    const std::shared_ptr<KNDatabaseTreeEntry> &, const KNError &)
{
}
