#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The columns of a table or a view, with their types as details.
class MSSQLDatabaseTreeEntrySectionTableColumns : public MSSQLCatalogSection
{
public:
    MSSQLDatabaseTreeEntrySectionTableColumns(const QString &schema, const QString &tableName);

    QString displayName() const override { return QStringLiteral("Columns"); }
    /// The names of all columns, as a list for a statement.
    QString dragDropString() const override;
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    void readRows(DatabaseResultSet &rows, List *entries) override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    const QString m_schema;
    const QString m_tableName;
};
