#pragma once

#include "Procedures/MSSQLStoredProcedureParameter.h"

#include <QAbstractTableModel>
#include <QList>

/// The parameters of a procedure, with the values to pass. On the UI thread.
class MSSQLStoredProcedureModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, DataType, Output, PassNull, Value, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    const QList<MSSQLStoredProcedureParameter> &parameters() const { return m_parameters; }
    void setParameters(const QList<MSSQLStoredProcedureParameter> &parameters);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    /// Takes a check state for NULL, and a text of the parameter's type as its value.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    /// The text of a column with this identifier, such as "Parameter name"; "unknown" for others.
    static QString textForColumn(const MSSQLStoredProcedureParameter &parameter, const QString &identifier);
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    void edited();
    /// The user entered what is no value of the parameter.
    void rejected(const QString &problem);

private:
    QVariant valueData(const MSSQLStoredProcedureParameter &parameter, int role) const;
    static QString placeholderOf(const MSSQLStoredProcedureParameter &parameter);
    static QString explanationOf(const MSSQLStoredProcedureParameter &parameter);
    bool setValue(int row, const QString &text);

    QList<MSSQLStoredProcedureParameter> m_parameters;
};
