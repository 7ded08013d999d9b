#include "UI/Results/KNRecordModel.h"

#include "UI/KNPlainToolTip.h"

#include <QFont>

KNRecordModel::KNRecordModel(const KNResultTableModel &result, QObject *parent)
    : QAbstractTableModel(parent)
    , m_result(result)
{
}

void KNRecordModel::setColumns(const QList<int> &columns)
{
    if (columns == m_columns)
        return;
    beginResetModel();
    m_columns = columns;
    endResetModel();
}

void KNRecordModel::setRow(int row)
{
    m_row = row < m_result.rowCount() ? row : -1;
    if (!m_columns.isEmpty())
        Q_EMIT dataChanged(index(0, Value), index(rowCount() - 1, Value));
}

int KNRecordModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

int KNRecordModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : FieldCount;
}

QVariant KNRecordModel::data(const QModelIndex &index, int role) const
{
    const int column = columnOfLine(index.row());
    if (column < 0)
        return {};
    if (index.column() == Value)
        return m_row >= 0 && m_row < m_result.rowCount() ? valueData(column, role) : QVariant();
    const QString text = index.column() == Name ? m_result.shownName(column) : m_result.typeName(column);
    if (role == Qt::ToolTipRole)
        return KNPlainToolTip(text);
    return role == Qt::DisplayRole ? text : QVariant();
}

QVariant KNRecordModel::valueData(int column, int role) const
{
    const QModelIndex cell = m_result.index(m_row, column);
    switch (role) {
    case Qt::ToolTipRole:
        return KNPlainToolTip(cell.data(Qt::DisplayRole).toString());
    case Qt::FontRole: {
        QFont font;
        font.setItalic(true);
        return m_result.cell(m_row, column).isNull ? font : QVariant();
    }
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return cell.data(role);
    default:
        return {};
    }
}

QVariant KNRecordModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Name ? tr("Column") : section == Type ? tr("Type") : tr("Value");
}
