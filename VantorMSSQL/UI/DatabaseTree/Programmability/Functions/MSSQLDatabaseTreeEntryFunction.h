#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Scripts/MSSQLScriptSubject.h"

/// A function of any kind.
class MSSQLDatabaseTreeEntryFunction : public KNDatabaseTreeEntry
{
public:
    /// Names are not escaped.
    MSSQLDatabaseTreeEntryFunction(const QString &displayName, const QString &schema,
                                   const QString &functionName);

    QString schema() const { return m_schema; }
    QString functionName() const { return m_functionName; }

    QString image() const override { return QStringLiteral("DatabaseTree-Function"); }
    QList<QStringList> dragNames() const override { return {{m_schema, m_functionName}}; }
    KNMenu menu() override;
    KNObjectPropertiesLoader propertiesLoader() const override;

protected:
    KNMenu additionalMenu() override;

private:
    MSSQLScriptSubject scriptSubject() const;
    KNMenuItem createScriptAsMenu() const;

    const QString m_schema;
    const QString m_functionName;
};
