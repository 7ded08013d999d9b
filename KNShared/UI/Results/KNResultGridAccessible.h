#pragma once

#include <QAccessibleWidget>
#include <QHash>
#include <QPair>
#include <QQueue>

class KNResultGridView;

/// Exposes a grid to assistive programs as a table of its shown columns, with column headers as row -1 and
/// row numbers as column -1. A cell is created when it is requested; only those requested last are kept. On
/// the UI thread.
class KNResultGridAccessible : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    static constexpr int CellsKept = 1000;
    static constexpr int SelectedReported = 1000; ///< rows and cells in a list of selected ones

    explicit KNResultGridAccessible(KNResultGridView *grid);
    ~KNResultGridAccessible() override;

    /// Lets QAccessible create this interface for grids.
    static void install();
    /// Reports that the current cell of a focused grid has changed.
    static void reportCurrentCell(KNResultGridView *grid);

    void *interface_cast(QAccessible::InterfaceType type) override;
    int childCount() const override;
    QAccessibleInterface *child(int index) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;

    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    /// -1 as the row or column gives a header.
    QAccessibleInterface *cellAt(int row, int column) const override;
    int selectedCellCount() const override;
    QList<QAccessibleInterface *> selectedCells() const override;
    QString columnDescription(int column) const override;
    QString rowDescription(int row) const override;
    int selectedColumnCount() const override;
    int selectedRowCount() const override;
    int columnCount() const override;
    int rowCount() const override;
    QList<int> selectedColumns() const override;
    QList<int> selectedRows() const override;
    bool isColumnSelected(int column) const override;
    bool isRowSelected(int row) const override;
    bool selectRow(int row) override;
    bool selectColumn(int column) override;
    bool unselectRow(int row) override;
    bool unselectColumn(int column) override;
    /// Cells address a position and read the model when asked: there is nothing to update.
    void modelChange(QAccessibleTableModelChangeEvent *) override {}

private:
    KNResultGridView *grid() const;
    bool isCompletelySelected(int firstRow, int lastRow, int firstColumn, int lastColumn) const;

    mutable QHash<QPair<int, int>, QAccessible::Id> m_cells; ///< by row and column
    mutable QQueue<QPair<int, int>> m_oldestCells;
};
