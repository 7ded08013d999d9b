#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

/// An index of a table or a view.
class MSSQLDatabaseTreeEntryTableIndex : public KNDatabaseTreeEntry
{
public:
    MSSQLDatabaseTreeEntryTableIndex(const QString &schema, const QString &tableName,
                                     const QString &indexName);

    QString schema() const { return m_schema; }
    QString tableName() const { return m_tableName; }
    QString indexName() const { return m_indexName; }

    QString image() const override { return QStringLiteral("DatabaseTree-Index"); }
    QList<QStringList> dragNames() const override { return {{displayName()}}; }
    KNMenu menu() override;
    /// Opens the designer of the table; does nothing for a view.
    void onDoubleClicked() override { MSSQLTreeCatalog::openDesigner(*this); }
    KNObjectPropertiesLoader propertiesLoader() const override;

protected:
    KNMenu additionalMenu() override;

private:
    const QString m_schema;
    const QString m_tableName;
    const QString m_indexName;
};
