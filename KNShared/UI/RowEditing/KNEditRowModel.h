#pragma once

#include "RowEditing/KNEditRowHelper.h"
#include "UI/KNSharedUIExport.h"

#include <QAbstractTableModel>

/// The columns of one edited row as a list: name, type, value. On the UI thread.
class KNSHAREDUI_EXPORT KNEditRowModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Field { Name, Type, Value, FieldCount };

    /// `row` outlives the model. While isLocked(), another thread may use it, and the model shows nothing of
    /// it.
    explicit KNEditRowModel(KNEditRowHelper &row, QObject *parent = nullptr);

    bool isLocked() const { return m_isLocked; }
    void setLocked(bool isLocked);
    /// Shows what has changed in the row.
    void refresh();
    /// Sets the value of a line to NULL, if its column takes that.
    bool setNull(int line);
    KNTypedValue::Input inputOf(int line) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    /// Takes a text of the column's type.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    void edited();
    /// The user entered what is no value of the column.
    void rejected(const QString &problem);

private:
    QVariant valueData(const KNEditRowColumn &column, int role) const;
    QString placeholderOf(const KNEditRowColumn &column) const;
    void setValue(int line, const KNValue &value);

    KNEditRowHelper &m_row;
    bool m_isLocked = false;
};
