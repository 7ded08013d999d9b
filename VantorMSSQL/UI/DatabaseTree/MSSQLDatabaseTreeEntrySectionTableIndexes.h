#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The indexes of a table or a view.
class MSSQLDatabaseTreeEntrySectionTableIndexes : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionTableIndexes(const QString &schema, const QString &tableName, bool isView);

    QString displayName() const override { return QStringLiteral("Indexes"); }
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    const QString m_schema;
    const QString m_tableName;
    const bool m_isView;
};
