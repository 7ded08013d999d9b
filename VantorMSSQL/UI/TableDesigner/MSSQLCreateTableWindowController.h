#pragma once

#include "Database/KNStatementRun.h"
#include "Import/KNDatabaseImportHelper.h"
#include "UI/Dialogs/KNCreateTableWindowController.h"
#include "UI/TableDesigner/MSSQLColumnGridModel.h"

class KNCautionBar;
class KNProgressSheet;
class QComboBox;
class QLineEdit;
class QPushButton;
class QTableView;

/// Creates a table: its name, its schema and its first columns, which are proposed and can be edited. The
/// sheet ends with 1 once the table exists. On the UI thread.
class MSSQLCreateTableWindowController : public KNCreateTableWindowController
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;

    MSSQLCreateTableWindowController(Settings settings, QWidget *parent);
    /// Proposes a column for each analysed one of a file, and shows hints at types that the server would
    /// refuse or that would not hold all values.
    MSSQLCreateTableWindowController(Settings settings, const QList<KNImportColumnAnalysis> &defaultColumns,
                                     QWidget *parent);
    ~MSSQLCreateTableWindowController() override;

    /// The statement that creates the table. Without columns it gets "Column1 int".
    static QString creationQueryForColumns(const QStringList &columns, const QString &targetTableName,
                                           const QString &inSchema);

    /// The hints at the types, a line for each column; null without one.
    QString hints() const;

public Q_SLOTS:
    /// Uses the types of the hints.
    void useSuggestedTypes();

private:
    void onAccept();
    void create(const QString &tableName, const QString &statement);
    void finish(const QString &tableName, const KNStatementOutcome &outcome);
    void loadSchemas();
    void setColumns(const QList<MSSQLColumnRecord> &columns);
    KNImportTypeHint hintFor(const MSSQLColumnRecord &column) const;
    void showHints();
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
    QList<KNImportColumnAnalysis> m_analyses; ///< of the file that fills the table; none without one
    KNCautionBar *const m_hints;
};
