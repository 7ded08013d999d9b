#pragma once

#include "Database/KNStatementRun.h"
#include "UI/Dialogs/KNWindowController.h"
#include "UI/TableDesigner/MSSQLColumnGridModel.h"

class KNProgressSheet;
class QComboBox;
class QLineEdit;
class QPushButton;
class QTableView;

/// Creates a table: its name, its schema and its first columns, which are proposed and can be edited. The
/// sheet ends with 1 once the table exists. On the UI thread.
class MSSQLCreateTableWindowController : public KNWindowController
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;

    MSSQLCreateTableWindowController(Settings settings, QWidget *parent);
    ~MSSQLCreateTableWindowController() override;

    /// The statement that creates the table. Without columns it gets "Column1 int".
    static QString creationQueryForColumns(const QStringList &columns, const QString &targetTableName,
                                           const QString &inSchema);

    /// The table that was created; null before.
    const QString &createdTableName() const { return m_createdTableName; }
    const QString &createdTableSchemaName() const { return m_createdTableSchemaName; }

private:
    void onAccept();
    void create(const QString &tableName, const QString &statement);
    void finish(const QString &tableName, const KNStatementOutcome &outcome);
    void loadSchemas();
    void edit(int row, MSSQLColumnGridModel::Column column, const QVariant &value);
    void addColumn();
    void removeColumn();
    QPushButton *newButton(const QString &title, void (MSSQLCreateTableWindowController::*clicked)());

    const Settings m_settings;
    QLineEdit *const m_name;
    QComboBox *const m_schema;
    MSSQLColumnGridModel *const m_columns;
    QTableView *const m_grid;
    std::unique_ptr<KNProgressSheet> m_progress; ///< while the table is created
    KNStatementRun::Ptr m_run;
    QString m_createdTableName;
    QString m_createdTableSchemaName;
};
