#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The stored procedures of a database, always shown with their schema.
class MSSQLDatabaseTreeEntrySectionStoredProcedures : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionStoredProcedures();

    QString displayName() const override { return QStringLiteral("Stored Procedures"); }
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;
};
