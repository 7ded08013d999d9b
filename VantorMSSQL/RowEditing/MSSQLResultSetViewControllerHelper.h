#pragma once

#include "RowEditing/MSSQLSourceTable.h"
#include "RowEditing/ResultSetViewControllerHelper.h"

#include <mutex>

class VantorDBC;

/// Formats values of SQL Server's types for a result grid, and finds the table behind one.
class MSSQLResultSetViewControllerHelper : public ResultSetViewControllerHelper
{
public:
    /// Queries longer than this are not searched for their table, in UTF-16 units.
    static constexpr qsizetype LongestQuery = 10000;

    /// Keeps a copy of the settings.
    explicit MSSQLResultSetViewControllerHelper(const VantorDBC &details);
    ~MSSQLResultSetViewControllerHelper() override;

    const VantorDBC &databaseConnectionDetails() const { return *m_details; }

    /// Decides by db-lib's type number; the value is ignored.
    int dataTypeForTableColumnIndex(qsizetype columnIndex, const KNValue &object) const override;
    QString typeNameForColumn(qsizetype column) const override;
    /// For sql_variant, explains how to display its values.
    QString remarkForColumn(qsizetype column) const override;
    /// Formats dates by their column's type, in UTC to the millisecond: "2024-02-29 13:45:07:123",
    /// "13:45:07:123" or "2024-02-29". The end of the day is "24:00:00:000".
    QString stringForValue(const KNValue &value, qsizetype column, bool allowTruncate) const override;

    QString readOnlyReason() const override;
    QString readOnlyReasonForTable(const QString &table, const QString &inSchema) const override;
    /// Searches the text by patterns. Requires a helper that a shared pointer holds.
    void beginLoadingPrimaryKeys() override;
    QStringList primaryKeyColumnNames() const override;
    /// The type of a sql_variant's value is not known; values of CLR types are shown as bytes.
    bool isWritableColumn(qsizetype column) const override;
    /// The schema is not used: the session's default schema decides unless `table` is a path.
    QString updateQueryForTable(const QString &table, const QString &inSchema, const QString &setClause,
                                const QString &whereClause) const override;
    std::shared_ptr<KNQueryLoader>
    createQueryLoaderForDeleteFromTablePath(const QStringList &path, const QStringList &usingColumns,
                                            const QList<QList<KNValue>> &data) const override;
    std::shared_ptr<const KNTableStatements> createTableStatements(const QString &table,
                                                                   const QString &inSchema) const override;
    std::shared_ptr<KNEditRowHelper>
    createEditRowHelper(const QString &table, const QString &inSchema,
                        const std::optional<QMap<QString, KNValue>> &values) const override;

private:
    std::shared_ptr<const MSSQLResultSetViewControllerHelper> shared() const;
    void loadPrimaryKeys(QString schema, const QString &table);

    const std::shared_ptr<const VantorDBC> m_details;
    mutable std::mutex m_mutex;
    QStringList m_internalPrimaryKeyNames; ///< guarded by m_mutex
};
