#pragma once

#include "TableDesign/MSSQLColumnEdit.h"

#include <QAbstractTableModel>

/// The columns of a table as a grid. An edit changes nothing here: it is reported, and the grid shows it once
/// the columns are set again. On the UI thread.
class MSSQLColumnGridModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using Column = MSSQLColumnEdit::Cell;
    using enum MSSQLColumnEdit::Cell;
    static constexpr int ColumnCount = CellCount;

    using QAbstractTableModel::QAbstractTableModel;

    /// "Primary", "Field", "Type", "Default", "Nullable" or "AutoIncrement".
    static QString identifier(int column);

    const QList<MSSQLColumnRecord> &columns() const { return m_columns; }
    void setColumns(const QList<MSSQLColumnRecord> &columns);
    /// Replaces one column. The view keeps its current cell and the focus.
    void setColumn(int row, const MSSQLColumnRecord &column);
    /// Whether cells can be edited; false while a statement runs.
    void setEditable(bool isEditable);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Reports the edit; always returns false.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

Q_SIGNALS:
    /// The user has entered another value: a text, or a bool for check cells.
    void edited(int row, MSSQLColumnGridModel::Column column, const QVariant &value);

private:
    QString textOf(const MSSQLColumnRecord &record, int column) const;

    QList<MSSQLColumnRecord> m_columns;
    bool m_isEditable = true;
};
