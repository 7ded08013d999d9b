#pragma once

#include "Database/DatabaseResultSet.h"
#include "DatabaseTree/KNDatabaseTreeLoadingEntry.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

/// An entry whose children are the rows of one catalog query. Failures are logged; if there are no other
/// children, one error entry shows them.
class MSSQLCatalogSection : public KNDatabaseTreeLoadingEntry
{
public:
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }

protected:
    enum class Retry { Never, OnError };

    /// The description of a section's load.
    struct Load
    {
        const char *errorDomain;
        Retry retry = Retry::Never;
        Protocol protocol = {};
    };

    explicit MSSQLCatalogSection(const Load &load);

    /// The query, with its placeholders filled. Called on the background thread, as all functions below.
    virtual QString catalogQuery() = 0;
    /// The child for the current row; null for none.
    virtual Ptr entryForRow(const DatabaseResultSet &) { return nullptr; }
    /// Creates the children, by default one for each row. Called again if the query was repeated.
    virtual void readRows(DatabaseResultSet &rows, List *entries);
    /// Called after the rows were read. An error is logged, and the entries are shown nevertheless.
    virtual void didReadRows(const List &, KNError *) {}

    std::optional<List> loadEntries(KNError *error) override;

private:
    const Load m_load;
};

/// A section whose children are the records of one table, view or procedure.
template <typename Record>
class MSSQLRecordSection : public MSSQLCatalogSection
{
protected:
    MSSQLRecordSection(const Load &load, const QString &schema, const QString &object)
        : MSSQLCatalogSection(load)
        , m_schema(schema)
        , m_object(object)
    {
    }

    const QString &schema() const { return m_schema; }
    /// The name of the table, view or procedure.
    const QString &object() const { return m_object; }

    virtual Ptr entryFor(const Record &record) = 0;

    QString catalogQuery() override
    {
        return MSSQLTreeCatalog::text(*this, Record::Title, Record::values(m_schema, m_object));
    }
    void readRows(DatabaseResultSet &rows, List *entries) override
    {
        for (const Record &record : Record::listFrom(rows))
            entries->push_back(entryFor(record));
    }

private:
    const QString m_schema;
    const QString m_object;
};
