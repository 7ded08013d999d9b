#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// An entry whose children are known without a query. They are created on the first expansion and kept.
class KNSHARED_EXPORT KNDatabaseTreeFixedEntry : public KNDatabaseTreeEntry
{
public:
    bool canHaveChildren() const override { return true; }
    /// Always returns false, and ignores `force`.
    bool loadEntriesAsync(bool force) override;

protected:
    /// Creates and adopts the children. Any thread.
    virtual List makeEntries() = 0;

private:
    std::mutex m_making;
};
