#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// A parameter of a stored procedure, with its type as details.
class MSSQLDatabaseTreeEntryStoredProcedureParameter : public KNDatabaseTreeEntry
{
public:
    /// Names are not escaped.
    MSSQLDatabaseTreeEntryStoredProcedureParameter(const QString &schema, const QString &procedureName);

    QString image() const override { return QStringLiteral("DatabaseTree-StoredProcedureParameter"); }
    QString dragDropString() const override { return displayName(); }
    KNObjectPropertiesLoader propertiesLoader() const override;

private:
    const QString m_schema;
    const QString m_procedureName;
};
