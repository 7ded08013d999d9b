#pragma once

#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"

/// The server's own databases: master, model, msdb and tempdb.
class MSSQLDatabaseTreeEntrySystemDatabases : public KNDatabaseTreeFixedEntry
{
public:
    explicit MSSQLDatabaseTreeEntrySystemDatabases(List databases)
        : m_databases(std::move(databases))
    {
    }

    QString displayName() const override { return QStringLiteral("System Databases"); }
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }
    bool isDimmed() const override { return true; }

protected:
    List makeEntries() override
    {
        for (const Ptr &database : m_databases)
            database->setParent(shared_from_this());
        return m_databases;
    }

private:
    const List m_databases;
};
