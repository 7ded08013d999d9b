#include "Desktop/Session/QueryHistoryModel.h"

#include "UI/Editor/KNSQLColours.h"
#include "UI/KNPlainToolTip.h"

#include <QApplication>

void QueryHistoryModel::setEntries(const QList<QueryHistoryEntry> &entries)
{
    beginResetModel();
    m_entries = entries;
    endResetModel();
}

int QueryHistoryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

int QueryHistoryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant QueryHistoryModel::data(const QModelIndex &index, int role) const
{
    const QueryHistoryEntry &entry = m_entries.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return displayText(entry, index.column());
    case Qt::TextAlignmentRole:
        if (index.column() == Duration || index.column() == Rows)
            return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    case Qt::ForegroundRole:
        return entry.error.isNull() ? QVariant() : KNSQLColours::forPalette(QApplication::palette()).error;
    case Qt::ToolTipRole:
        return entry.error.isNull() ? QVariant() : KNPlainToolTip(entry.error);
    case SearchRole:
        return QString(entry.text + u'\n' + entry.database + u'\n' + entry.error);
    default:
        return {};
    }
}

QVariant QueryHistoryModel::displayText(const QueryHistoryEntry &entry, int column) const
{
    switch (column) {
    case Time:
        return entry.time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    case Duration:
        return tr("%1 s").arg(static_cast<double>(entry.milliseconds) / 1000, 0, 'f', 3);
    case Rows:
        return QString::number(entry.rowCount);
    case Database:
        return entry.database;
    default:
        return entry.text.left(300).simplified();
    }
}

QVariant QueryHistoryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QString titles[ColumnCount] = {tr("Time"), tr("Duration"), tr("Rows"), tr("Database"), tr("Query")};
    return titles[section];
}
