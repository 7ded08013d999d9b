#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "QueryLoader/KNQueryLoader.h"

/// A trigger. Its scripts are derived from its definition.
class MSSQLDatabaseTreeEntryTableTrigger : public KNDatabaseTreeEntry
{
public:
    MSSQLDatabaseTreeEntryTableTrigger(const QString &schema, const QString &triggerName);

    QString schema() const { return m_schema; }
    QString triggerName() const { return m_triggerName; }

    /// The text that creates the trigger. Setting it before the name is a programming error.
    QString triggerSQL() const { return m_triggerSQL; }
    void setTriggerSQL(const QString &triggerSQL);
    QString alterTriggerSQL() const { return m_alterTriggerSQL; }
    QString dropTriggerSQL() const { return m_dropTriggerSQL; }
    QString dropAndCreateTriggerSQL() const { return m_dropAndCreateTriggerSQL; }

    QString image() const override { return QStringLiteral("DatabaseTree-Trigger"); }
    QList<QStringList> dragNames() const override { return {{displayName()}}; }
    KNMenu menu() override;
    KNObjectPropertiesLoader propertiesLoader() const override;

private:
    KNMenuItem createScriptAsMenu() const;
    KNQueryLoaderPtr script(const QString &text, const KNQueryReport &report) const;
    KNQueryLoaderPtr alterScript() const;
    /// Reports a failure if the text is no valid definition; the first `drop` units of a script must not run
    /// then.
    KNQueryReport definitionReport(qsizetype drop = 0) const;

    const QString m_schema;
    const QString m_triggerName;
    QString m_triggerSQL;
    QString m_alterTriggerSQL;
    QString m_dropTriggerSQL;
    QString m_dropAndCreateTriggerSQL;
};
