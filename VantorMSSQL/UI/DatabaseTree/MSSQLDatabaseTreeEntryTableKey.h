#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// A primary, unique or foreign key of a table.
class MSSQLDatabaseTreeEntryTableKey : public KNDatabaseTreeEntry
{
public:
    /// Names are not escaped.
    MSSQLDatabaseTreeEntryTableKey(const QString &schema, const QString &tableName, const QString &keyName,
                                   bool isPrimaryKey);

    QString schema() const { return m_schema; }
    QString tableName() const { return m_tableName; }

    QString image() const override;
    QList<QStringList> dragNames() const override { return {{displayName()}}; }
    KNObjectPropertiesLoader propertiesLoader() const override;

protected:
    KNMenu additionalMenu() override;

private:
    const QString m_schema;
    const QString m_tableName;
    const bool m_isPrimaryKey;
};
