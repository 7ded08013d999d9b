#include "UI/Import/KNImportMappingModel.h"

#include <QApplication>
#include <QPalette>

QString KNImportMappingModel::noSource()
{
    return tr("(not filled)");
}

QString KNImportMappingModel::constantSource()
{
    return tr("(constant)");
}

void KNImportMappingModel::setColumns(const QStringList &fileColumns,
                                      const QList<KNImportTableColumnModel> &columns)
{
    beginResetModel();
    m_fileColumns = fileColumns;
    m_columns = columns;
    m_sources = KNImportMapping::byName(fileColumns, columns);
    m_isConstant.fill(false, columns.size());
    m_constants = QStringList(columns.size());
    endResetModel();
}

void KNImportMappingModel::setSources(const KNImportMapping::Sources &sources)
{
    beginResetModel();
    m_sources = sources;
    m_isConstant.fill(false);
    endResetModel();
}

QList<KNImportColumnPlan> KNImportMappingModel::plans() const
{
    QList<KNImportColumnPlan> plans;
    for (qsizetype i = 0; i < m_columns.size(); ++i) {
        if (m_isConstant[i])
            plans.append({m_columns[i], -1, m_constants[i]});
        else if (m_sources[i] >= 0)
            plans.append({m_columns[i], m_sources[i]});
    }
    return plans;
}

int KNImportMappingModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

int KNImportMappingModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString KNImportMappingModel::sourceText(qsizetype row) const
{
    if (m_isConstant[row])
        return constantSource();
    return m_sources[row] < 0 ? noSource() : m_fileColumns.value(m_sources[row]);
}

QVariant KNImportMappingModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const KNImportTableColumnModel &column = m_columns[index.row()];
    const bool isUnset = m_sources[index.row()] < 0 && !m_isConstant[index.row()];
    if (role == Qt::ForegroundRole && index.column() == Source && isUnset)
        return QApplication::palette().color(QPalette::PlaceholderText);
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    switch (index.column()) {
    case Name:
        return column.name;
    case Type:
        return column.allowsNulls ? column.dataTypeDisplay : tr("%1, not null").arg(column.dataTypeDisplay);
    case Source:
        return sourceText(index.row());
    default:
        break;
    }
    if (!m_isConstant[index.row()])
        return {};
    const QString &constant = m_constants[index.row()];
    return constant.isNull() && role == Qt::DisplayRole ? QStringLiteral("NULL") : constant;
}

QVariant KNImportMappingModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    const QStringList titles = {tr("Table Column"), tr("Type"), tr("File Column"), tr("Value")};
    return titles.value(section);
}

Qt::ItemFlags KNImportMappingModel::flags(const QModelIndex &index) const
{
    const bool isEditable =
        index.column() == Source || (index.column() == Value && m_isConstant.value(index.row()));
    return QAbstractTableModel::flags(index) | (isEditable ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

bool KNImportMappingModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    const QString text = value.toString();
    if (index.column() == Source) {
        m_isConstant[index.row()] = text == constantSource();
        m_sources[index.row()] = m_fileColumns.indexOf(text);
    } else {
        m_constants[index.row()] =
            text.compare(QLatin1String("NULL"), Qt::CaseInsensitive) == 0 ? QString() : text;
    }
    Q_EMIT dataChanged(this->index(index.row(), 0), this->index(index.row(), ColumnCount - 1));
    return true;
}
