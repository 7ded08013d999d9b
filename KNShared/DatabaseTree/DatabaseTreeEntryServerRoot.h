#pragma once

#include "DatabaseTree/KNDatabaseTreeLoadingEntry.h"

#include <QStringList>

/// The root entry of a connection's object tree.
class KNSHARED_EXPORT DatabaseTreeEntryServerRoot : public KNDatabaseTreeLoadingEntry
{
public:
    /// All user databases of the server, sorted, including those not shown; empty before the first load.
    virtual QStringList allDatabaseNames() const = 0;
    /// Loads the objects of all databases for copyWithSearchResults(), or waits for a load in progress.
    /// Blocks; must not run on the UI thread, which has to process the results. False with an error if the
    /// server's objects cannot be searched; true with an error if some or all databases could not be queried.
    virtual bool updateSearchEntries(KNError *error) = 0;

    std::shared_ptr<KNDatabaseTreeContextHelper> contextHelper() const override { return m_contextHelper; }
    /// Sets the helper that performs the actions of all menus in the tree. Call before the first load.
    void setContextHelper(const std::shared_ptr<KNDatabaseTreeContextHelper> &contextHelper)
    {
        m_contextHelper = contextHelper;
    }

protected:
    using KNDatabaseTreeLoadingEntry::KNDatabaseTreeLoadingEntry;

    KNMenuItem disconnectMenuItem();

private:
    std::shared_ptr<KNDatabaseTreeContextHelper> m_contextHelper;
};
