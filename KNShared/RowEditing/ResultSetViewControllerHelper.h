#pragma once

#include "Database/KNRowStore.h"
#include "KNSharedExport.h"

#include <QMap>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>

class KNEditRowHelper;
class KNQueryLoader;
class KNTableStatements;

/// Learns the source table of a result. On the main thread.
class KNSHARED_EXPORT ResultSetViewControllerHelperDelegate
{
public:
    virtual ~ResultSetViewControllerHelperDelegate();

    /// The primary key of the result's table was read. Names without quotes. Not called after a failure.
    virtual void loadedPrimaryKeysForTable(const QString &table, const QString &inSchema) = 0;
};

/// Provides type information and display texts for the values of a result grid. This class shows values
/// unchanged; connectors subclass it for their types. Set up by one thread; afterwards the const operations
/// may be called from any thread.
class KNSHARED_EXPORT ResultSetViewControllerHelper
    : public std::enable_shared_from_this<ResultSetViewControllerHelper>
{
public:
    /// The data types of columns.
    enum DataType : int {
        Other = 0,
        Text = 1,
        DateAndTime = 2,
        Date = 3,
        Time = 4,
        Boolean = 7,
        Integer = 8,
        Real = 9, ///< floating-point or decimal
    };

    /// Maximum length in UTF-16 units of a text truncated for one line of a grid, without the ellipsis.
    static constexpr qsizetype TruncatedLength = 1000;

    ResultSetViewControllerHelper();
    virtual ~ResultSetViewControllerHelper();
    ResultSetViewControllerHelper(const ResultSetViewControllerHelper &) = delete;
    ResultSetViewControllerHelper &operator=(const ResultSetViewControllerHelper &) = delete;

    /// The connector's type numbers of the result's columns.
    QList<int> columnTypes() const { return m_columnTypes; }
    void setColumnTypes(const QList<int> &types) { m_columnTypes = types; }

    /// The data type of a column, from 0; Other outside of the columns. `object` is one of its values.
    virtual int dataTypeForTableColumnIndex(qsizetype columnIndex, const KNValue &object) const;
    /// The same for a grid column whose identifier is the index as a number.
    int dataTypeForTableColumn(const QVariant &identifier, const KNValue &object) const;
    /// The type name of a column; null if unknown.
    virtual QString typeNameForColumn(qsizetype column) const;
    /// A remark for the user on a column whose values are shown as bytes; null for none.
    virtual QString remarkForColumn(qsizetype column) const;

    /// Formats a value of the column for display; a null QString for null. `allowTruncate` shortens long
    /// texts.
    virtual QString stringForValue(const KNValue &value, qsizetype column, bool allowTruncate) const;
    /// The same for a value of a row; a null QString outside of the row.
    QString stringValueForRowArray(const KNRow &row, qsizetype column, bool allowTruncate) const;

    /// \name Editing the rows of one table; on the main thread. No result can be edited by default.
    /// @{
    /// The batch that returned the result.
    QString executedQuery() const { return m_executedQuery; }
    void setExecutedQuery(const QString &query) { m_executedQuery = query; }
    /// Not owned.
    void setDelegate(const std::weak_ptr<ResultSetViewControllerHelperDelegate> &delegate)
    {
        m_delegate = delegate;
    }
    /// Why the rows of the executed query cannot be edited, as a text that follows "Read-only: "; null if it
    /// plainly reads one table.
    virtual QString readOnlyReason() const;
    /// The same for this table, which loadedPrimaryKeysForTable() has reported.
    virtual QString readOnlyReasonForTable(const QString &table, const QString &inSchema) const;
    /// Finds the source table of the executed query and reads its key in the background.
    virtual void beginLoadingPrimaryKeys();
    /// The columns of the key in its order; empty until it was loaded and without one.
    virtual QStringList primaryKeyColumnNames() const;
    /// Whether values of this result column can be written as they are shown.
    virtual bool isWritableColumn(qsizetype column) const;
    /// A statement that changes rows of a table; null by default.
    virtual QString updateQueryForTable(const QString &table, const QString &inSchema,
                                        const QString &setClause, const QString &whereClause) const;
    /// A loader of statements that each delete one row with these values; null by default.
    virtual std::shared_ptr<KNQueryLoader>
    createQueryLoaderForDeleteFromTablePath(const QStringList &path, const QStringList &usingColumns,
                                            const QList<QList<KNValue>> &data) const;
    /// The statements of the result's table; null by default.
    virtual std::shared_ptr<const KNTableStatements> createTableStatements(const QString &table,
                                                                           const QString &inSchema) const;
    /// A row of a table with these values, or a new one; null by default. It reads the table's columns.
    virtual std::shared_ptr<KNEditRowHelper>
    createEditRowHelper(const QString &table, const QString &inSchema,
                        const std::optional<QMap<QString, KNValue>> &values) const;
    /// @}

protected:
    std::shared_ptr<ResultSetViewControllerHelperDelegate> delegate() const { return m_delegate.lock(); }

private:
    QList<int> m_columnTypes;
    QString m_executedQuery;
    std::weak_ptr<ResultSetViewControllerHelperDelegate> m_delegate;
};
