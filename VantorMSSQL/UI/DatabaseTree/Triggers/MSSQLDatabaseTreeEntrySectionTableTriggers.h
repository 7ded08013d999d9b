#pragma once

#include "Catalog/MSSQLTriggerEntry.h"
#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The triggers of a table or a view, with their definitions.
class MSSQLDatabaseTreeEntrySectionTableTriggers : public MSSQLRecordSection<MSSQLTriggerEntry>
{
public:
    MSSQLDatabaseTreeEntrySectionTableTriggers(const QString &schema, const QString &tableName);

    QString displayName() const override { return QStringLiteral("Triggers"); }
    KNMenu menu() override;

protected:
    Ptr entryFor(const MSSQLTriggerEntry &record) override;
};
