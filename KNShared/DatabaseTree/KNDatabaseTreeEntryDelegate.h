#pragma once

#include "KNSharedExport.h"

#include <memory>

class KNDatabaseTreeEntry;
class KNError;

/// Observes the loads of a tree's entries. The first two functions are called on the thread on which the load
/// begins or ends; for one load always in this order.
class KNSHARED_EXPORT KNDatabaseTreeEntryDelegate
{
public:
    virtual ~KNDatabaseTreeEntryDelegate();

    virtual void databaseTreeEntryDidBeginLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) = 0;
    /// The entry has its new children. Also called when they change for another reason.
    virtual void databaseTreeEntryDidFinishLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry) = 0;
    /// A load has failed with an error that the user must see even if the tree does not show it. Called on
    /// the thread of the load, before it ends. Does nothing by default: not every host has somebody to tell.
    virtual void databaseTreeEntryDidFailLoading(const std::shared_ptr<KNDatabaseTreeEntry> &entry,
                                                 const KNError &error);
};
