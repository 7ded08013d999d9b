#pragma once

#include "UI/KNSharedUIExport.h"

#include <QWidget>

class KNRecordModel;
class KNResultGridView;
class QLabel;
class QTableView;

/// Shows the current row of a grid as a form, one line per column, and moves to other rows. Hidden until
/// opened; Escape hides it and returns the focus to the grid. On the UI thread.
class KNSHAREDUI_EXPORT KNRecordView : public QWidget
{
    Q_OBJECT

public:
    explicit KNRecordView(KNResultGridView *grid, QWidget *parent = nullptr);

    QTableView *table() const { return m_table; }
    /// "Row 3 of 1,000"
    QString caption() const;

public Q_SLOTS:
    void open();
    void close();
    void showNextRow();
    void showPreviousRow();

Q_SIGNALS:
    /// Emitted when the user requests to see a whole value, that of the grid's current cell.
    void valueRequested();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void arrange();
    void followGrid();
    void moveBy(int rows);

    KNResultGridView *const m_grid;
    KNRecordModel *m_model;
    QTableView *m_table;
    QLabel *m_caption;
};
