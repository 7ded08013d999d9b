#pragma once

#include "UI/Import/KNImportPage.h"

#include <functional>

class KNCautionBar;
class KNImportMappingModel;
class QComboBox;
class QLabel;
class QPushButton;
class QTableView;

/// Chooses the table, or creates one, and assigns the columns of the file to its columns.
class KNSHAREDUI_EXPORT KNImportTargetPage : public KNImportPage
{
    Q_OBJECT

public:
    using Created = std::function<void(const QStringList &tablePath)>;
    /// Shows a dialog that creates a table for these columns; `created` is called if the user does.
    using CreateTable = std::function<void(const QList<KNImportColumnAnalysis> &columns, Created created)>;

    /// `table` is selected first if it exists: a table's name, or a schema, a dot and a name. An empty
    /// `createTable` offers no new table.
    KNImportTargetPage(KNImportSession &session, const QString &table, CreateTable createTable,
                       QWidget *parent = nullptr);

    QString title() const override;
    void enter() override;
    bool isComplete() const override;
    void apply() override;

    QComboBox *tables() const { return m_tables; }
    KNImportMappingModel *mapping() const { return m_mapping; }
    QString notes() const;

public Q_SLOTS:
    /// Analyses the whole file, and opens the dialog for a new table.
    void createTable();

private:
    void arrange();
    void showTables();
    void showTable();
    void showNewTableDialog();
    void showAllColumns();
    void showNotes();
    void selectTable(const QString &name);

    QString m_wanted; ///< the table to select once the tables are there
    const CreateTable m_createTable;
    bool m_isCreating = false; ///< the file is being analysed for a new table
    QComboBox *const m_tables;
    QPushButton *const m_new;
    KNImportMappingModel *const m_mapping;
    QTableView *const m_grid;
    QLabel *const m_status;
    KNCautionBar *const m_notes;
};
