#pragma once

#include "Catalog/MSSQLForeignKeyEntry.h"
#include "UI/TableDesigner/MSSQLDesignerListView.h"

/// The foreign keys of a table. On the UI thread.
class MSSQLTableListForeignKeysViewController : public MSSQLDesignerListView
{
    Q_OBJECT

public:
    /// The session outlives this object.
    explicit MSSQLTableListForeignKeysViewController(MSSQLTableDesignSession &session,
                                                     QWidget *parent = nullptr);

    /// The text of a cell; empty, after a log record, for an unknown identifier.
    static QString cellText(const MSSQLForeignKeyEntry &key, const QString &identifier);

    void loadForeignKeys();
    void dropSelected();
    /// Opens the editor for a new key, or for the selected one.
    void addNewKey();
    void editSelected();

protected:
    void load() override { loadForeignKeys(); }

private:
    QList<MSSQLForeignKeyEntry> m_keys;
};
