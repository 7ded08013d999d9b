#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The columns of a table or a view, with their types as details.
class MSSQLDatabaseTreeEntrySectionTableColumns : public MSSQLRecordSection<MSSQLColumnRecord>
{
public:
    MSSQLDatabaseTreeEntrySectionTableColumns(const QString &schema, const QString &tableName);

    QString displayName() const override { return QStringLiteral("Columns"); }
    /// The names of all columns.
    QList<QStringList> dragNames() const override;
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    Ptr entryFor(const MSSQLColumnRecord &record) override;
};
