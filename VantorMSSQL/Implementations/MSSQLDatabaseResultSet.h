#pragma once

#include "Database/DatabaseResultSet.h"
#include "Database/KNResultSetHolder.h"

/// The cursor over one result that MSSQLClient::executeQuery() returns. Never accesses the server.
class MSSQLDatabaseResultSet : public DatabaseResultSet
{
public:
    /// No columns and no rows.
    MSSQLDatabaseResultSet() = default;
    /// Reads `resultSet`, which must be finished.
    explicit MSSQLDatabaseResultSet(KNDatabaseResultSetPtr resultSet);

    QStringList columnNames() const override;
    qsizetype columnCount() const override;
    qsizetype rowCount() const override;
    /// All rows of the result; null if it was created without one.
    const KNRowStore *rows() const;
    bool next() override;
    KNValue objectForColumnIndex(qsizetype index) const override;
    KNValue objectForColumn(const QString &name) const override;
    QString stringForColumnIndex(qsizetype index) const override;
    QString stringForColumn(const QString &name) const override;
    KNValue trimmedStringForColumnIndex(qsizetype index) const override;
    std::optional<bool> boolForColumnIndex(qsizetype index) const override;
    std::optional<bool> boolForColumn(const QString &name) const override;
    KNValue numberForColumnIndex(qsizetype index) const override;
    KNValue numberForColumn(const QString &name) const override;

private:
    qsizetype indexOfColumn(const QString &name) const;

    KNDatabaseResultSetPtr m_internalResultSet;
    qsizetype m_currentPosition = -1;
    KNRow m_currentRow;
};
