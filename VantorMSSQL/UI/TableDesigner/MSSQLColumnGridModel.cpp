#include "UI/TableDesigner/MSSQLColumnGridModel.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "UI/KNPlainToolTip.h"

namespace {

constexpr const char *Identifiers[] = {"Primary", "Field", "Type", "Default", "Nullable", "AutoIncrement"};

bool isCheckCell(int column)
{
    return MSSQLColumnEdit::isCheck(static_cast<MSSQLColumnEdit::Cell>(column));
}

bool isChecked(const MSSQLColumnRecord &record, int column)
{
    return MSSQLColumnEdit::valueOf(record, static_cast<MSSQLColumnEdit::Cell>(column)).toBool();
}

} // namespace

QString MSSQLColumnGridModel::identifier(int column)
{
    return column >= 0 && column < ColumnCount ? QString::fromLatin1(Identifiers[column]) : QString();
}

void MSSQLColumnGridModel::setColumns(const QList<MSSQLColumnRecord> &columns)
{
    beginResetModel();
    m_columns = columns;
    endResetModel();
}

void MSSQLColumnGridModel::setColumn(int row, const MSSQLColumnRecord &column)
{
    m_columns[row] = column;
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

void MSSQLColumnGridModel::setEditable(bool isEditable)
{
    m_isEditable = isEditable;
}

int MSSQLColumnGridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

int MSSQLColumnGridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString MSSQLColumnGridModel::textOf(const MSSQLColumnRecord &record, int column) const
{
    switch (column) {
    case Field:
        return record.columnName;
    case Type:
        return record.displayType();
    case Default:
        return record.defaultValue;
    case AutoIncrement:
        return record.isIdentity ? QStringLiteral("<auto>") : QString();
    case Primary:
    case Nullable:
        return {};
    default:
        KNLogHelper::sharedInstance()->logMessage("Unhandled column: %@", QString::number(column));
        return {};
    }
}

QVariant MSSQLColumnGridModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_columns.size())
        return {};
    const MSSQLColumnRecord &record = m_columns[index.row()];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return textOf(record, index.column());
    case Qt::CheckStateRole:
        if (!isCheckCell(index.column()))
            return {};
        return isChecked(record, index.column()) ? Qt::Checked : Qt::Unchecked;
    case Qt::ToolTipRole:
        if (const QString refusal = MSSQLColumnEdit::refusal(record, static_cast<Column>(index.column()));
            !refusal.isNull())
            return KNPlainToolTip(refusal);
        return KNPlainToolTip(textOf(record, index.column()));
    case Qt::AccessibleTextRole:
        return KNFormat("%@ %@", headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString(),
                        isCheckCell(index.column())
                            ? (isChecked(record, index.column()) ? tr("yes") : tr("no"))
                            : textOf(record, index.column()));
    default:
        return {};
    }
}

QVariant MSSQLColumnGridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QString titles[] = {tr("Primary"), tr("Field"),    tr("Type"),
                              tr("Default"), tr("Nullable"), tr("Auto Increment")};
    return section >= 0 && section < ColumnCount ? titles[section] : QString();
}

Qt::ItemFlags MSSQLColumnGridModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (!index.isValid() || index.row() >= m_columns.size() || !m_isEditable)
        return flags;
    const MSSQLColumnRecord &record = m_columns[index.row()];
    if (!MSSQLColumnEdit::refusal(record, static_cast<Column>(index.column())).isNull())
        return flags;
    return flags | (isCheckCell(index.column()) ? Qt::ItemIsUserCheckable : Qt::ItemIsEditable);
}

bool MSSQLColumnGridModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || index.row() >= m_columns.size())
        return false;
    const bool isCheck = isCheckCell(index.column());
    if (role != (isCheck ? Qt::CheckStateRole : Qt::EditRole))
        return false;
    const QVariant entered = isCheck ? QVariant(value.toInt() == Qt::Checked) : value.toString().trimmed();
    const QVariant before = isCheck ? QVariant(isChecked(m_columns[index.row()], index.column()))
                                    : QVariant(textOf(m_columns[index.row()], index.column()));
    if (entered != before)
        Q_EMIT edited(index.row(), static_cast<Column>(index.column()), entered);
    return false;
}
