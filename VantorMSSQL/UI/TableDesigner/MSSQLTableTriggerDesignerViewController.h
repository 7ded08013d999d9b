#pragma once

#include "Catalog/MSSQLTriggerEntry.h"
#include "UI/TableDesigner/MSSQLDesignerListView.h"

/// The triggers of a table. On the UI thread.
class MSSQLTableTriggerDesignerViewController : public MSSQLDesignerListView
{
    Q_OBJECT

public:
    /// The session outlives this object.
    explicit MSSQLTableTriggerDesignerViewController(MSSQLTableDesignSession &session,
                                                     QWidget *parent = nullptr);

    /// The text of a cell; empty, after a log record, for an unknown identifier.
    static QString cellText(const MSSQLTriggerEntry &trigger, const QString &identifier);

    void loadTriggers();
    void openSelected();
    void dropSelected();
    /// Enables a disabled trigger and disables an enabled one.
    void toggleSelected();

Q_SIGNALS:
    /// The user wants to see this definition.
    void definitionRequested(const QString &statement);

protected:
    void load() override { loadTriggers(); }

private:
    QList<MSSQLTriggerEntry> m_triggers;
};
