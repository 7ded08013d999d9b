#pragma once

#include "KNSharedExport.h"

#include <memory>

class KNDatabaseTreeEntry;

/// Watches the loads of a tree's entries. Both are called on whatever thread the load begins or ends; for one
/// load always in this order.
class KNSHARED_EXPORT KNDatabaseTreeEntryDelegate
{
public:
    virtual ~KNDatabaseTreeEntryDelegate();

    virtual void databaseTreeEntryDidBeginLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) = 0;
    /// The entry has its new children. Also told when they have changed otherwise.
    virtual void databaseTreeEntryDidFinishLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) = 0;
};
