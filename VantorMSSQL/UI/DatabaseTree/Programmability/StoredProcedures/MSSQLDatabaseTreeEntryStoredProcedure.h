#pragma once

#include "Catalog/MSSQLParameterRecord.h"
#include "Scripts/MSSQLScriptSubject.h"
#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// A stored procedure, which expands into its parameters.
class MSSQLDatabaseTreeEntryStoredProcedure : public MSSQLRecordSection<MSSQLParameterRecord>
{
public:
    /// Names are not escaped.
    MSSQLDatabaseTreeEntryStoredProcedure(const QString &displayName, const QString &schema,
                                          const QString &procedureName);

    using MSSQLRecordSection::schema;
    QString procedureName() const { return object(); }

    QString image() const override { return QStringLiteral("DatabaseTree-StoredProcedure"); }
    QList<QStringList> dragNames() const override { return {{schema(), procedureName()}}; }
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;
    KNObjectPropertiesLoader propertiesLoader() const override;

protected:
    KNMenu additionalMenu() override;
    Ptr entryFor(const MSSQLParameterRecord &record) override;

private:
    MSSQLScriptSubject scriptSubject() const;
    KNMenuItem createScriptAsMenu() const;
};
