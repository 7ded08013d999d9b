#pragma once

#include <QAbstractTableModel>
#include <QStringList>

/// A table of texts that cannot be edited. A null text is shown as NULL. On the UI thread.
class KNImportTextModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setTexts(const QStringList &headers, const QList<QStringList> &rows);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QStringList m_headers;
    QList<QStringList> m_rows;
};
