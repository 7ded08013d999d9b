#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The federations of an Azure database.
class MSSQLDatabaseTreeEntrySectionFederations : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionFederations();

    QString displayName() const override { return QStringLiteral("Federations"); }
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;
};
