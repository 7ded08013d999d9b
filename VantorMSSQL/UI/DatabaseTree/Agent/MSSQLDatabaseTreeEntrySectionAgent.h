#pragma once

#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"

/// The SQL Server Agent of a server.
class MSSQLDatabaseTreeEntrySectionAgent : public KNDatabaseTreeFixedEntry
{
public:
    QString displayName() const override { return QStringLiteral("SQL Server Agent"); }
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }

protected:
    List makeEntries() override;
};
