#pragma once

#include "DatabaseTree/KNDatabaseTreeLoadingEntry.h"

#include <QStringList>

/// The root of the tree of one connection.
class KNSHARED_EXPORT DatabaseTreeEntryServerRoot : public KNDatabaseTreeLoadingEntry
{
public:
    /// All user databases of the server, sorted, whether they are shown or not; empty before the first load.
    virtual QStringList allDatabaseNames() const = 0;
    /// Asks the server for the objects that copyWithSearchResults() finds, in all databases; one that is
    /// running already is waited for instead. Blocks; not on the UI thread, which must be free to take up
    /// what was found. False with an error when the server's objects cannot be searched at all; true with an
    /// error when some or all databases could not be asked.
    virtual bool updateSearchEntries(KNError *error) = 0;

    std::shared_ptr<KNDatabaseTreeContextHelper> contextHelper() const override { return m_contextHelper; }
    /// By whom the actions of all menus in the tree are carried out. To be set before the first load.
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
