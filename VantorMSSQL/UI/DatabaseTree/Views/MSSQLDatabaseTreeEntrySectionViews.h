#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The views of a database, shown with their schema unless all of them are in the current one.
class MSSQLDatabaseTreeEntrySectionViews : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionViews();

    QString displayName() const override { return QStringLiteral("Views"); }
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;
    void didReadRows(const List &entries, KNError *error) override;
};
