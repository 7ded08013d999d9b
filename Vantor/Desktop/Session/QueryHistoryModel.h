#pragma once

#include "Desktop/Session/QueryHistoryEntry.h"

#include <QAbstractTableModel>

/// The history of a connection as a table: time, duration, rows, database, and the beginning of the text.
class QueryHistoryModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Time, Duration, Rows, Database, Text, ColumnCount };
    /// The text that a search matches.
    static constexpr int SearchRole = Qt::UserRole;

    using QAbstractTableModel::QAbstractTableModel;

    void setEntries(const QList<QueryHistoryEntry> &entries);
    const QueryHistoryEntry &entry(int row) const { return m_entries.at(row); }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QVariant displayText(const QueryHistoryEntry &entry, int column) const;

    QList<QueryHistoryEntry> m_entries;
};
