#include "UI/RowEditing/KNEditRowModel.h"

#include "Foundation/KNFormat.h"
#include "UI/Icons/KNIcon.h"
#include "UI/KNPlainToolTip.h"
#include "UI/RowEditing/KNEditRowDelegate.h"

#include <QFont>
#include <QGuiApplication>
#include <QIcon>
#include <QPalette>

namespace {

/// Whether nothing is shown of the column's value: the server makes it, or the row is new and leaves it out.
bool isUnset(const KNEditRowHelper &row, const KNEditRowColumn &column)
{
    return row.isNewRow() && !column.hasBeenModified;
}

bool isEditable(const KNEditRowColumn &column)
{
    return !column.isIdentity && !column.isReadOnly;
}

} // namespace

KNEditRowModel::KNEditRowModel(KNEditRowHelper &row, QObject *parent)
    : QAbstractTableModel(parent)
    , m_row(row)
{
}

void KNEditRowModel::setLocked(bool isLocked)
{
    beginResetModel();
    m_isLocked = isLocked;
    endResetModel();
}

void KNEditRowModel::refresh()
{
    beginResetModel();
    endResetModel();
}

KNTypedValue::Input KNEditRowModel::inputOf(int line) const
{
    return m_row.tableColumns().value(line).input;
}

int KNEditRowModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() || m_isLocked ? 0 : static_cast<int>(m_row.tableColumns().size());
}

int KNEditRowModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : FieldCount;
}

QVariant KNEditRowModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const KNEditRowColumn &column = m_row.tableColumns()[index.row()];
    if (index.column() == Value)
        return valueData(column, role);
    if (index.column() == Name && role == Qt::DecorationRole && column.isPrimaryKey)
        return KNIcon::named(QStringLiteral("DatabaseTree-PK"));
    if (index.column() == Name && role == Qt::AccessibleTextRole && column.isPrimaryKey)
        return KNFormat(tr("%@, primary key"), column.columnName);
    const QString text = index.column() == Name ? column.columnName : column.typeName;
    if (role == Qt::ToolTipRole)
        return KNPlainToolTip(text);
    return role == Qt::DisplayRole ? text : QVariant();
}

QString KNEditRowModel::placeholderOf(const KNEditRowColumn &column) const
{
    if (isUnset(m_row, column) && !isEditable(column))
        return tr("set by the server");
    if (isUnset(m_row, column) && !column.columnDefaultValue.isNull())
        return KNFormat(tr("default %@"), column.columnDefaultValue);
    if (isUnset(m_row, column) && !column.isNullable)
        return tr("required");
    return column.columnCurrentValue.isNull() ? QStringLiteral("NULL") : QString();
}

QVariant KNEditRowModel::valueData(const KNEditRowColumn &column, int role) const
{
    const QString placeholder = placeholderOf(column);
    QFont font;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return placeholder.isNull() ? column.columnCurrentValue.displayText() : placeholder;
    case Qt::EditRole:
        return column.columnCurrentValue.displayText();
    case KNEditRowDelegate::InputRole:
        return static_cast<int>(column.input);
    case KNEditRowDelegate::NameRole:
        return column.columnName;
    case Qt::FontRole:
        font.setItalic(!placeholder.isNull());
        font.setBold(column.hasBeenModified);
        return font;
    case Qt::ForegroundRole:
        return placeholder.isNull() ? QVariant()
                                    : QGuiApplication::palette().color(QPalette::PlaceholderText);
    case Qt::ToolTipRole:
        return placeholder.isNull() ? KNPlainToolTip(column.columnCurrentValue.displayText().left(1000))
                                    : QVariant();
    default:
        return {};
    }
}

bool KNEditRowModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const KNEditRowColumn &column = m_row.tableColumns()[index.row()];
    const QString text = value.toString();
    const KNValue &current = column.columnCurrentValue;
    const bool isUnchanged = current.isNull() ? text.isEmpty() && column.input != KNTypedValue::Input::Text
                                              : text == current.displayText();
    if (isUnchanged)
        return false;
    QString problem;
    const std::optional<KNValue> read = KNTypedValue::read(text, column.input, &problem);
    if (!read) {
        Q_EMIT rejected(KNFormat(tr("%@: %@"), column.columnName, problem));
        return false;
    }
    setValue(index.row(), *read);
    return true;
}

bool KNEditRowModel::setNull(int line)
{
    if (!(flags(index(line, Value)) & Qt::ItemIsEditable))
        return false;
    const KNEditRowColumn &column = m_row.tableColumns()[line];
    if (!column.isNullable) {
        Q_EMIT rejected(KNFormat(tr("%@ does not take NULL."), column.columnName));
        return false;
    }
    setValue(line, KNValue());
    return true;
}

void KNEditRowModel::setValue(int line, const KNValue &value)
{
    m_row.setColumnValue(line, value);
    Q_EMIT dataChanged(index(line, Value), index(line, Value));
    Q_EMIT edited();
}

QVariant KNEditRowModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Name ? tr("Column") : section == Type ? tr("Type") : tr("Value");
}

Qt::ItemFlags KNEditRowModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    const bool isEditableCell = index.isValid() && index.row() < rowCount() && index.column() == Value &&
                                isEditable(m_row.tableColumns()[index.row()]);
    return isEditableCell ? flags | Qt::ItemIsEditable : flags;
}
