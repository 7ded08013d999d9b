#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The primary, unique and foreign keys of a table, as plain leaves.
class MSSQLDatabaseTreeEntrySectionTableKeys : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionTableKeys(const QString &schema, const QString &tableName);

    QString displayName() const override { return QStringLiteral("Keys"); }
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    const QString m_schema;
    const QString m_tableName;
};
