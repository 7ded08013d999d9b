#pragma once

#include "Database/KNRowReader.h"
#include "Results/KNRowArrangement.h"
#include "RowEditing/ResultSetViewControllerHelper.h"
#include "UI/KNPreferences.h"
#include "UI/KNSharedUIExport.h"

#include <QAbstractTableModel>

/// The rows of one result set as a grid shows them, read where they stand. Rows appear when
/// showPublishedRows() is called; a finished result can be sorted and filtered. On the UI thread.
class KNSHAREDUI_EXPORT KNResultTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using Helper = std::shared_ptr<const ResultSetViewControllerHelper>;

    /// A cell as it is shown in one line.
    struct Cell
    {
        QString text; ///< empty for NULL
        bool isNull = true;
        bool isNumber = false;
        bool isMarked = false; ///< shown apart: what the value is could not be known
    };

    /// The result's columns must be known.
    KNResultTableModel(KNDatabaseResultSetPtr result, Helper helper, QObject *parent = nullptr);
    ~KNResultTableModel() override;

    const KNDatabaseResultSetPtr &result() const { return m_result; }

    /// Shows what has arrived since the last call; true when that was something, the end included. `isLast`:
    /// nothing comes any more, even if the result does not say so.
    bool showPublishedRows(bool isLast = false);
    /// Whether all rows have arrived and are shown.
    bool isFinished() const { return m_isFinished; }
    /// Rows that have arrived and were not hidden because of a filter.
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    /// Rows that have arrived.
    int arrivedRowCount() const { return m_arrivedRows; }

    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    Cell cell(int row, int column) const;
    /// Calls `visit` with each cell of a row from `first` to `last`.
    void visitCells(int row, int first, int last,
                    const std::function<void(int column, const Cell &cell)> &visit) const;
    /// The number of a shown row in the result set.
    qsizetype storedRow(int row) const;
    QString columnName(int column) const { return m_columnNames.value(column); }
    /// Null where it is not known.
    QString typeName(int column) const { return m_helper->typeNameForColumn(column); }

    /// All shown rows and columns.
    ResultRows shownRows() const;

    const KNRowArrangement &arrangement() const { return m_arrangement; }
    /// Sorts and filters in the background, instead of what goes on there. False, and nothing happens, while
    /// rows arrive.
    bool arrange(const KNRowArrangement &arrangement);
    /// Gives up what arrange() has begun: the rows stay as they are shown.
    void cancelArranging();
    bool isArranging() const { return m_cancelled != nullptr; }

Q_SIGNALS:
    /// Sorting and filtering has begun or come to an end.
    void arrangingChanged();

private:
    void showOrder(const KNRowArrangement &arrangement, KNRowOrderPtr order);
    KNRowArrangement::Display display() const;
    static QString textOf(const ResultSetViewControllerHelper &helper, KNPreferences::DateFormat format,
                          const KNRowCell &cell, std::size_t limit, qsizetype column, bool allowTruncate);
    Cell shown(const KNRowCell &stored, int column) const;
    QString remarkOn(int column) const;

    const KNDatabaseResultSetPtr m_result;
    const Helper m_helper;
    const QStringList m_columnNames;
    KNPreferences::DateFormat m_dateFormat;
    std::shared_ptr<void> m_preferencesObserver;
    mutable KNRowReader m_reader;
    int m_arrivedRows = 0;
    bool m_isFinished = false;
    KNRowArrangement m_arrangement;
    KNRowOrderPtr m_order;                          ///< null while the rows are shown as they are stored
    std::shared_ptr<std::atomic<bool>> m_cancelled; ///< of what goes on in the background; null for nothing
};
