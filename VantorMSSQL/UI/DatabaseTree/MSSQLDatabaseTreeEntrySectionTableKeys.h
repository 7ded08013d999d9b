#pragma once

#include "Catalog/MSSQLKeyRecord.h"
#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The primary, unique and foreign keys of a table. Its entries have no children.
class MSSQLDatabaseTreeEntrySectionTableKeys : public MSSQLRecordSection<MSSQLKeyRecord>
{
public:
    MSSQLDatabaseTreeEntrySectionTableKeys(const QString &schema, const QString &tableName);

    QString displayName() const override { return QStringLiteral("Keys"); }
    KNMenu menu() override;

protected:
    Ptr entryFor(const MSSQLKeyRecord &record) override;
};
