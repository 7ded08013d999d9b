#pragma once

#include "UI/Results/KNResultTableModel.h"

/// One row of a result as a list of its shown columns: name, type, value. On the UI thread.
class KNSHAREDUI_EXPORT KNRecordModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Field { Name, Type, Value, FieldCount };

    /// The result must outlive the model.
    explicit KNRecordModel(const KNResultTableModel &result, QObject *parent = nullptr);

    void setColumns(const QList<int> &columns);
    /// Shows a displayed row; -1 shows none.
    void setRow(int row);
    int row() const { return m_row; }
    /// The result's column of a line; -1 outside.
    int columnOfLine(int line) const { return m_columns.value(line, -1); }
    int lineOfColumn(int column) const { return static_cast<int>(m_columns.indexOf(column)); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVariant valueData(int column, int role) const;

    const KNResultTableModel &m_result;
    QList<int> m_columns;
    int m_row = -1;
};
