#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

/// A column of a table or a view, displayed by its name.
class MSSQLDatabaseTreeEntryDatabaseTableColumn : public KNDatabaseTreeEntry
{
public:
    MSSQLDatabaseTreeEntryDatabaseTableColumn(const QString &schema, const QString &tableName,
                                              const QString &columnName);

    QString schema() const { return m_schema; }
    QString tableName() const { return m_tableName; }
    QString columnName() const { return m_columnName; }
    bool isPrimaryKey() const { return m_isPrimaryKey; }
    void setIsPrimaryKey(bool isPrimaryKey) { m_isPrimaryKey = isPrimaryKey; }
    bool belongsToView() const;

    QString image() const override;
    int tableCellHeight() const override { return 23; }
    QString tableCellIdentifier() const override { return QStringLiteral("ColumnDetailsTableCellView"); }
    QList<QStringList> dragNames() const override { return {{m_columnName}}; }
    KNMenu menu() override;
    /// Opens the designer of the table; does nothing for a view.
    void onDoubleClicked() override { MSSQLTreeCatalog::openDesigner(*this); }
    KNObjectPropertiesLoader propertiesLoader() const override;

protected:
    KNMenu additionalMenu() override;

private:
    const QString m_schema;
    const QString m_tableName;
    const QString m_columnName;
    bool m_isPrimaryKey = false;
};
