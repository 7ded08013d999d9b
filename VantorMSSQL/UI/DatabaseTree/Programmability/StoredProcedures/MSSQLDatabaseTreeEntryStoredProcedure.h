#pragma once

#include "Scripts/MSSQLScriptSubject.h"
#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// A stored procedure, which expands into its parameters.
class MSSQLDatabaseTreeEntryStoredProcedure : public MSSQLCatalogSection
{
public:
    /// Names are not escaped.
    MSSQLDatabaseTreeEntryStoredProcedure(const QString &displayName, const QString &schema,
                                          const QString &procedureName);

    QString schema() const { return m_schema; }
    QString procedureName() const { return m_procedureName; }

    QString image() const override { return QStringLiteral("DatabaseTree-StoredProcedure"); }
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    MSSQLScriptSubject scriptSubject() const;
    KNMenuItem createScriptAsMenu() const;

    const QString m_schema;
    const QString m_procedureName;
};
