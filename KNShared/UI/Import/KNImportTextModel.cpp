#include "UI/Import/KNImportTextModel.h"

#include <QApplication>
#include <QPalette>

void KNImportTextModel::setTexts(const QStringList &headers, const QList<QStringList> &rows)
{
    beginResetModel();
    m_headers = headers;
    m_rows = rows;
    endResetModel();
}

int KNImportTextModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int KNImportTextModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_headers.size());
}

QVariant KNImportTextModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const QString text = m_rows[index.row()].value(index.column());
    if (role == Qt::DisplayRole)
        return text.isNull() ? QStringLiteral("NULL") : QString(text).replace(u'\n', QChar(0x21b5));
    if (role == Qt::ForegroundRole && text.isNull())
        return QApplication::palette().color(QPalette::PlaceholderText);
    return {};
}

QVariant KNImportTextModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    return m_headers.value(section);
}
