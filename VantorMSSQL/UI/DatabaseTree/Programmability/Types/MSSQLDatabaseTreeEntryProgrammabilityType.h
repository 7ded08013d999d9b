#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// A user-defined type.
class MSSQLDatabaseTreeEntryProgrammabilityType : public KNDatabaseTreeEntry
{
public:
    /// Names are not escaped; `typeType` is the section's kind.
    MSSQLDatabaseTreeEntryProgrammabilityType(const QString &displayName, const QString &schema,
                                              const QString &typeName, int typeType);

    QString schema() const { return m_schema; }
    QString typeName() const { return m_typeName; }

    QString image() const override { return QStringLiteral("DatabaseTree-UserType"); }
    QList<QStringList> dragNames() const override { return {{m_schema, m_typeName}}; }
    KNMenu menu() override;
    KNObjectPropertiesLoader propertiesLoader() const override;

private:
    const QString m_schema;
    const QString m_typeName;
    const int m_typeType;
};
