#pragma once

#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"

/// The user-defined types of a database, by kind.
class MSSQLDatabaseTreeEntrySectionTypes : public KNDatabaseTreeFixedEntry
{
public:
    QString displayName() const override { return QStringLiteral("Types"); }
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }
    KNMenu menu() override;

protected:
    List makeEntries() override;
};
