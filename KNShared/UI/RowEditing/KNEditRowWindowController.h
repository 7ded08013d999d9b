#pragma once

#include "RowEditing/KNEditRowHelper.h"
#include "UI/Dialogs/KNWindowController.h"

#include <memory>

class KNEditRowModel;
class QLabel;
class QPushButton;
class QTableView;

/// The form of one row: shows every column of its table, runs the statement of the changes, and shows what
/// the server stored. Ends with 1 if a change was applied. On the UI thread.
class KNSHAREDUI_EXPORT KNEditRowWindowController : public KNWindowController
{
    Q_OBJECT

public:
    /// Reads the columns in the background. `prefersCorrected` chooses the form of the statements.
    KNEditRowWindowController(std::shared_ptr<KNEditRowHelper> row, bool prefersCorrected, QWidget *parent);
    ~KNEditRowWindowController() override;

    /// Asks first when there are changes that were not applied.
    void reject() override;

    KNEditRowModel *model() const { return m_model; }
    QTableView *table() const { return m_table; }
    QString status() const;

public Q_SLOTS:
    /// Runs the statement of the changes, unless another one runs.
    void apply();
    void setCurrentToNull();

private:
    void arrange();
    /// Calls `work` with the row on a background thread, and `done` afterwards.
    void useRow(const QString &status, std::function<void(KNEditRowHelper &row)> work,
                std::function<void()> done);
    void showColumns();
    void run(bool corrected);
    void showResult(const KNError &error);
    void showSaved();
    void update();
    void setStatus(const QString &status);

    const std::shared_ptr<KNEditRowHelper> m_row;
    const bool m_prefersCorrected;
    KNEditRowModel *m_model;
    QTableView *m_table;
    QLabel *m_status;
    QPushButton *m_null;
    QPushButton *m_apply = nullptr;
    bool m_wasApplied = false;
    bool m_wasRejected = false; ///< by the last apply()
};
