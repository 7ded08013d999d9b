#pragma once

#include "Results/KNCellStatistics.h"
#include "UI/Results/KNResultTableModel.h"

#include <QAbstractItemView>

class KNResultColumns;
class KNRowNumberBar;
class QHeaderView;

/// A grid of the rows of one result. All rows have the same height, so that the cost depends on the visible
/// rows only. Cells, rows (by their numbers), columns (by their headers) and everything can be selected. On
/// the UI thread.
class KNSHAREDUI_EXPORT KNResultGridView : public QAbstractItemView
{
    Q_OBJECT

public:
    using QAbstractItemView::edit;

    /// The model must outlive the view.
    explicit KNResultGridView(KNResultTableModel &model, QWidget *parent = nullptr);

    KNResultTableModel &resultModel() const { return m_resultModel; }
    KNResultColumns *columns() const { return m_columns; }
    QHeaderView *horizontalHeader() const { return m_header; }
    KNRowNumberBar *rowNumbers() const { return m_rowNumbers; }
    int rowHeight() const { return m_rowHeight; }
    /// The columns that are not hidden, from left to right.
    QList<int> shownColumns() const;
    /// Sizes a column to its header and the visible values.
    void fitColumn(int column);
    /// The first visible row, and the number of rows that fit.
    int topRow() const;
    int visibleRowCount() const;
    /// The height for this number of rows, with headers and scroll bar.
    int heightForRows(int rows) const;
    /// Explains a grid without rows; empty while rows are shown or may arrive.
    QString emptyText() const;

    /// The selected rows and shown columns: those with at least one selected cell.
    ResultRows selectedRows() const;
    /// The number of hidden columns between selected ones.
    qsizetype hiddenColumnsInSelection() const;
    /// The selected cells of shown columns. The ranges do not overlap.
    QList<KNCellStatistics::Range> selectedCells() const;
    void selectRows(int first, int last, QItemSelectionModel::SelectionFlags command);
    void selectColumn(int column, QItemSelectionModel::SelectionFlags command);

    QRect visualRect(const QModelIndex &index) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint &point) const override;
    /// Selects all shown rows.
    void selectAll() override;

Q_SIGNALS:
    /// Emitted when the user requests to copy the selection.
    void copyRequested();
    /// Emitted when the user requests to see a whole value.
    void valueRequested(const QModelIndex &index);
    /// Emitted when a column header is double-clicked.
    void sortRequested(int column);
    /// Emitted when the user requests to paste or to undo.
    void pasteRequested();
    void undoRequested();
    /// Emitted before an editor opens in a cell. The receiver sets `isEdited` if it edits the value itself.
    void editRequested(const QModelIndex &index, bool *isEdited);

protected:
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override;
    int verticalOffset() const override;
    bool isIndexHidden(const QModelIndex &index) const override;
    void setSelection(const QRect &rect, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection &selection) const override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void rowsInserted(const QModelIndex &parent, int first, int last) override;
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override;
    bool viewportEvent(QEvent *event) override;
    int sizeHintForColumn(int column) const override;

protected Q_SLOTS:
    void updateGeometries() override;

public Q_SLOTS:
    void reset() override;
    void dataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                     const QList<int> &roles) override;
    /// Called by an Edit menu.
    void copy() { Q_EMIT copyRequested(); }
    void paste() { Q_EMIT pasteRequested(); }
    void undo() { Q_EMIT undoRequested(); }

private:
    static constexpr int RowsForWidths = 100; ///< number of rows that determine the column widths

    void measure();
    void fitColumns();
    void paintRow(QPainter &painter, int row, const QItemSelection &selection);
    void paintCells(QPainter &painter, int row, int first, int last, const QItemSelection &selection);
    void paintCell(QPainter &painter, const QRect &rect, const KNResultTableModel::Cell &cell,
                   bool isSelected);
    QColor groundOf(const KNResultTableModel::Cell &cell) const;
    bool isEditable(const QModelIndex &index) const;
    int rowAt(int y) const;

    KNResultTableModel &m_resultModel;
    KNResultColumns *m_columns;
    QHeaderView *m_header;
    KNRowNumberBar *m_rowNumbers;
    std::shared_ptr<void> m_preferencesObserver;
    QString m_nullText;
    int m_rowHeight = 1;
    int m_padding = 1;
    int m_currentColumn = 0;                ///< last column of the cursor
    QPersistentModelIndex m_selectionStart; ///< of an extension with Shift
    bool m_isExtending = false;             ///< the cursor is moved by a key with Shift
    int m_fittedRows = 0;                   ///< number of rows used for the column widths
    bool m_isFitting = false;
    bool m_wasResizedByUser = false;
    bool m_isUpdatingGeometries = false;
};
