#pragma once

#include "Database/KNRowReader.h"
#include "Results/KNRowArrangement.h"
#include "RowEditing/KNRowEdits.h"
#include "RowEditing/ResultSetViewControllerHelper.h"
#include "UI/KNPreferences.h"
#include "UI/KNSharedUIExport.h"

#include <QAbstractTableModel>

class KNResultEditing;

/// The rows of one result set for a grid, read directly from its store. Rows appear when showPublishedRows()
/// is called; a finished result can be sorted and filtered. On the UI thread.
class KNSHAREDUI_EXPORT KNResultTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using Helper = std::shared_ptr<const ResultSetViewControllerHelper>;

    /// How a row or a cell differs from what the server has.
    enum class Change { None, Changed, New, Deleted };

    /// A cell formatted for one line.
    struct Cell
    {
        QString text; ///< empty for NULL
        bool isNull = true;
        bool isNumber = false;
        bool isMarked = false; ///< highlighted because the value could not be determined
        Change change = Change::None;
    };

    /// The result's columns must be set.
    KNResultTableModel(KNDatabaseResultSetPtr result, Helper helper, QObject *parent = nullptr);
    ~KNResultTableModel() override;

    const KNDatabaseResultSetPtr &result() const { return m_result; }

    /// Shows rows that arrived since the last call; true if there were any or the result ended. `isLast`: no
    /// more rows will arrive, even if the result is not marked as finished.
    bool showPublishedRows(bool isLast = false);
    /// Whether all rows have arrived and are shown.
    bool isFinished() const { return m_isFinished; }
    /// Shows the edits of these rows, which must outlive the model; null for none.
    void setEditing(KNResultEditing *editing);
    KNResultEditing *editing() const { return m_editing; }
    /// Shows edits that were made, and new rows at the end.
    void showEdits();
    /// Shows another result with the same columns, arranged as this one.
    void replaceResult(const KNDatabaseResultSetPtr &result);
    /// The row behind a displayed one.
    KNRowEdits::RowId rowId(int row) const;
    /// The value that the server has in a displayed row that is not new.
    KNValue storedValue(int row, int column) const;
    Change changeOf(int row) const;

    /// The rows that have arrived and are not filtered out, and the new ones.
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    /// The number of rows that have arrived.
    int arrivedRowCount() const { return m_arrivedRows; }

    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    Cell cell(int row, int column) const;
    /// Calls `visit` with each cell of a row from `first` to `last`.
    void visitCells(int row, int first, int last,
                    const std::function<void(int column, const Cell &cell)> &visit) const;
    /// The number of displayed rows that are not new.
    int storedRowCount() const;
    /// The stored row number of a displayed row that is not new.
    qsizetype storedRow(int row) const;
    QString columnName(int column) const { return m_columnNames.value(column); }
    /// The name in one line, or "(no name)".
    QString shownName(int column) const;
    /// The type name of a column; null if unknown.
    QString typeName(int column) const { return m_helper->typeNameForColumn(column); }

    /// Formats cells as they are displayed, but not truncated; usable on any thread.
    KNCellMatcher::Display display() const;

    /// All displayed rows that are not new, and all columns, without edits.
    ResultRows shownRows() const;

    const KNRowArrangement &arrangement() const { return m_arrangement; }
    /// Sorts and filters in the background and cancels a running arrangement. Returns false and does nothing
    /// while rows arrive.
    bool arrange(const KNRowArrangement &arrangement);
    /// Cancels a running arrange(); the displayed rows do not change.
    void cancelArranging();
    bool isArranging() const { return m_cancelled != nullptr; }

Q_SIGNALS:
    /// Emitted when sorting and filtering begins or ends.
    void arrangingChanged();

private:
    void showOrder(const KNRowArrangement &arrangement, KNRowOrderPtr order);
    static QString textOf(const ResultSetViewControllerHelper &helper, KNPreferences::DateFormat format,
                          const KNRowCell &cell, std::size_t limit, qsizetype column, bool allowTruncate);
    Cell shown(const KNRowCell &stored, int column) const;
    const KNRowEdits::Row *editedRow(int row) const;
    Cell edited(const KNRowEdits::Row &row, int column, Cell stored, bool isNew) const;
    QString remarkOn(int column) const;

    KNDatabaseResultSetPtr m_result;
    const Helper m_helper;
    const QStringList m_columnNames;
    KNPreferences::DateFormat m_dateFormat;
    std::shared_ptr<void> m_preferencesObserver;
    mutable std::optional<KNRowReader> m_reader;
    KNResultEditing *m_editing = nullptr;
    int m_newRows = 0; ///< shown of those of m_editing
    int m_arrivedRows = 0;
    bool m_isFinished = false;
    KNRowArrangement m_arrangement;
    KNRowOrderPtr m_order;                          ///< null while rows are displayed in stored order
    std::shared_ptr<std::atomic<bool>> m_cancelled; ///< of the background work; null if none
};
