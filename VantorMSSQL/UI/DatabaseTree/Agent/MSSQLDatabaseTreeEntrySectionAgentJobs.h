#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The jobs of the SQL Server Agent.
class MSSQLDatabaseTreeEntrySectionAgentJobs : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionAgentJobs();

    QString displayName() const override { return QStringLiteral("Jobs"); }
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;
};
