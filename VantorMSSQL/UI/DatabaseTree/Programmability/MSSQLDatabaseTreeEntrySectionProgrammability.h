#pragma once

#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"

/// The stored procedures, functions and types of a database.
class MSSQLDatabaseTreeEntrySectionProgrammability : public KNDatabaseTreeFixedEntry
{
public:
    QString displayName() const override { return QStringLiteral("Programmability"); }
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }
    KNMenu menu() override;

protected:
    List makeEntries() override;
};
