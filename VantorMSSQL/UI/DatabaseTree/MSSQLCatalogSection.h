#pragma once

#include "Database/DatabaseResultSet.h"
#include "DatabaseTree/KNDatabaseTreeLoadingEntry.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

/// An entry whose children are the rows of one catalog query. Failures are logged, and shown as one error
/// entry where there is nothing else.
class MSSQLCatalogSection : public KNDatabaseTreeLoadingEntry
{
public:
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }

protected:
    enum class Retry { Never, OnError };

    /// What a section declares of its load.
    struct Load
    {
        const char *errorDomain;
        Retry retry = Retry::Never;
        Protocol protocol = {};
    };

    explicit MSSQLCatalogSection(const Load &load);

    /// The query, with its placeholders filled. On the background thread, as all below.
    virtual QString catalogQuery() = 0;
    /// The child for the current row; null for none.
    virtual Ptr entryForRow(const DatabaseResultSet &row) = 0;
    /// Makes the children; called again when the query had to be repeated.
    virtual void readRows(DatabaseResultSet &rows, List *entries);
    /// The rows are read. What fails here is logged, and the entries are shown all the same.
    virtual void didReadRows(const List &, KNError *) {}

    std::optional<List> loadEntries(KNError *error) override;

private:
    const Load m_load;
};
