#pragma once

#include "KNSharedExport.h"

#include <memory>

class KNDatabaseTreeEntry;

/// Observes the loads of a tree's entries. Both functions are called on the thread on which the load begins
/// or ends; for one load always in this order.
class KNSHARED_EXPORT KNDatabaseTreeEntryDelegate
{
public:
    virtual ~KNDatabaseTreeEntryDelegate();

    virtual void databaseTreeEntryDidBeginLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) = 0;
    /// The entry has its new children. Also called when they change for another reason.
    virtual void databaseTreeEntryDidFinishLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) = 0;
};
