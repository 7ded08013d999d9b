#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The triggers of a table or a view, with their texts.
class MSSQLDatabaseTreeEntrySectionTableTriggers : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionTableTriggers(const QString &schema, const QString &tableName);

    QString displayName() const override { return QStringLiteral("Triggers"); }
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    const QString m_schema;
    const QString m_tableName;
};
