#pragma once

#include <QLineEdit>

class QTableView;

/// A field above a column grid: only rows whose name contains its text are shown. On the UI thread.
class MSSQLColumnFilter : public QLineEdit
{
    Q_OBJECT

public:
    /// The grid outlives this object.
    explicit MSSQLColumnFilter(QTableView *grid);

    /// Hides and shows the rows; called again by itself when the grid gets other rows.
    void apply();

private:
    QTableView *const m_grid;
};
