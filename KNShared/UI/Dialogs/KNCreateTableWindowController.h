#pragma once

#include "UI/Dialogs/KNWindowController.h"

/// The dialog of a connector that creates a table. Ends with 1 once the table exists. On the UI thread.
class KNSHAREDUI_EXPORT KNCreateTableWindowController : public KNWindowController
{
    Q_OBJECT

public:
    using KNWindowController::KNWindowController;

    /// The table that was created, and its schema; null before.
    const QString &createdTableName() const { return m_createdTableName; }
    const QString &createdTableSchemaName() const { return m_createdTableSchemaName; }

protected:
    /// Ends the sheet.
    void endWithTable(const QString &schema, const QString &name);

private:
    QString m_createdTableName;
    QString m_createdTableSchemaName;
};
