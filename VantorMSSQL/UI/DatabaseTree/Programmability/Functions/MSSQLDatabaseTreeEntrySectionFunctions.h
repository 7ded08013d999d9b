#pragma once

#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"

/// The functions of a database, by kind.
class MSSQLDatabaseTreeEntrySectionFunctions : public KNDatabaseTreeFixedEntry
{
public:
    QString displayName() const override { return QStringLiteral("Functions"); }
    QString image() const override { return QStringLiteral("DatabaseTree-Folder"); }
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    List makeEntries() override;
};
