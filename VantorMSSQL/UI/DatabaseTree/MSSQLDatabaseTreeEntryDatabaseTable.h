#pragma once

#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"
#include "Scripts/MSSQLScriptSubject.h"

/// A table or a view. Expands into columns, keys, indexes and triggers.
class MSSQLDatabaseTreeEntryDatabaseTable : public KNDatabaseTreeFixedEntry
{
public:
    /// Names are not escaped.
    MSSQLDatabaseTreeEntryDatabaseTable(const QString &displayName, const QString &schema,
                                        const QString &tableName);

    const QString &schema() const { return m_schema; }
    const QString &tableName() const { return m_tableName; }
    bool isView() const { return m_isView; }
    void setIsView(bool isView) { m_isView = isView; }

    QString image() const override { return QStringLiteral("DatabaseTree-Table"); }
    QString iconName() const override;
    QList<QStringList> dragNames() const override;
    std::shared_ptr<DatabaseTreeDragDropEntry> dragDropEntry() const override;
    void onDoubleClicked() override { cmdDown(); }
    /// Shows the first rows in a new query tab.
    void cmdDown() override;
    /// Opens the table designer.
    void cmdRight() override;
    KNMenu menu() override;
    KNObjectPropertiesLoader propertiesLoader() const override;

protected:
    KNMenu additionalMenu() override;
    List makeEntries() override;

private:
    QString selectStatement() const;
    MSSQLScriptSubject scriptSubject() const;
    KNMenu tableMenu();
    KNMenu viewMenu();
    KNMenuItem createExportMenuItem() const;
    KNMenuItem createScriptAsMenu() const;
    KNMenuItem createScriptAsForViewMenu() const;

    const QString m_schema;
    const QString m_tableName;
    bool m_isView = false;
};
