#include "Foundation/KNUtf8.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLColumnValue.h"
#include "Implementations/MSSQLHandleScope.h"

#include <sybdb.h>

namespace {

constexpr int RowsPerChunk = 100;
constexpr int CharacterType = SYBCHAR;

QList<MSSQLColumn> columnsOf(DBPROCESS *dbproc)
{
    QList<MSSQLColumn> columns(dbnumcols(dbproc));
    for (int i = 0; i < columns.size(); ++i) {
        columns[i].name = QString::fromUtf8(dbcolname(dbproc, i + 1));
        if (columns[i].name.isNull())
            columns[i].name = QStringLiteral("");
        columns[i].type = dbcoltype(dbproc, i + 1);
        if (const DBTYPEINFO *info = dbcoltypeinfo(dbproc, i + 1)) {
            columns[i].precision = info->precision;
            columns[i].scale = info->scale;
        }
    }
    return columns;
}

void appendRow(DBPROCESS *dbproc, const QList<MSSQLColumn> &columns, KNRowStore &rows)
{
    rows.beginRow();
    int number = 0;
    for (const MSSQLColumn &column : columns) {
        ++number;
        appendColumnValue(rows, column, dbdata(dbproc, number), dbdatlen(dbproc, number));
    }
    rows.endRow();
}

/// An aggregate as text; null for the two datetime types, which are not shown.
KNValue aggregateValue(DBPROCESS *dbproc, int computeId, int column)
{
    const int type = dbalttype(dbproc, computeId, column);
    const BYTE *data = dbadata(dbproc, computeId, column);
    if (!data || type == SYBDATETIME4 || type == SYBDATETIME)
        return KNValue();
    BYTE buffer[8192];
    const DBINT length = dbconvert(dbproc, type, data, dbadlen(dbproc, computeId, column), CharacterType,
                                   buffer, sizeof buffer);
    if (length < 0)
        return KNValue();
    return KNValue(KNTextFromUtf8(QByteArrayView(buffer, length)));
}

} // namespace

void MSSQLClient::readColumns(KNDatabaseResultSet &resultSet)
{
    const MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
    QStringList names;
    QList<int> types;
    const QList<MSSQLColumn> columns = columnsOf(m_dbProc);
    for (const MSSQLColumn &column : columns) {
        names.append(column.name);
        types.append(column.type);
    }
    resultSet.setColumns(names, types);
}

/// Reads the rows of the current result, or its row count if it has none. Returns the result set of its
/// COMPUTE rows, if there are any.
KNDatabaseResultSetPtr MSSQLClient::readRows(const KNDatabaseResultSetPtr &resultSet,
                                             KNResultSetHolder &holder)
{
    MSSQLHandleScope handle(m_dbProcSemaphore, m_cancellation);
    if (dbrows(m_dbProc) != SUCCEED) {
        resultSet->setNumberOfRowsAffected(dbcount(m_dbProc));
        return nullptr;
    }

    const QList<MSSQLColumn> columns = columnsOf(m_dbProc);
    KNRowStore &rows = resultSet->rows();
    KNDatabaseResultSetPtr compute;
    m_cancellation.beginRows();
    for (qint64 index = 0; !m_cancellation.isRequested(); ++index) {
        if (index % RowsPerChunk == 0)
            showRows(*resultSet, holder, handle);
        const STATUS status = dbnextrow(m_dbProc);
        if (status == REG_ROW) {
            if (!columns.isEmpty())
                appendRow(m_dbProc, columns, rows);
        } else if (status > 0) {
            if (!compute)
                compute = newComputeResultSet(status, resultSet->executedQuery(), holder);
            readComputeRow(status, *compute, holder);
        } else {
            if (!m_cancellation.isRequested()) // a cancel ends the reading before the end of the rows
                m_cancellation.endRows();
            break;
        }
    }
    holder.incrementTotalResultCountBy(rows.publish());
    resultSet->setNumberOfRowsAffected(rows.rowCount() + rows.droppedRowCount());
    if (compute)
        compute->setNumberOfRowsAffected(compute->rows().rowCount());
    return compute;
}

/// Publishes the rows read so far, and releases the handle for a moment so that a cancel can take it. Waits
/// while the reader is too far behind.
void MSSQLClient::showRows(KNDatabaseResultSet &resultSet, KNResultSetHolder &holder,
                           MSSQLHandleScope &handle)
{
    holder.incrementTotalResultCountBy(resultSet.rows().publish());
    handle.release();
    while (!m_cancellation.isRequested() && !resultSet.rows().waitForRoom(std::chrono::milliseconds(20))) {
    }
    handle.retake();
}

KNDatabaseResultSetPtr MSSQLClient::newComputeResultSet(int computeId, const QString &query,
                                                        KNResultSetHolder &holder)
{
    QStringList names;
    QList<int> types;
    for (int column = 1; column <= dbnumalts(m_dbProc, computeId); ++column) {
        const QString name = QString::fromUtf8(dbacolname(m_dbProc, computeId, column));
        names.append(name.isNull() ? QStringLiteral("") : name);
        types.append(CharacterType);
    }
    auto compute = std::make_shared<KNDatabaseResultSet>(query);
    compute->setColumns(names, types);
    holder.append(compute);
    return compute;
}

void MSSQLClient::readComputeRow(int computeId, KNDatabaseResultSet &resultSet, KNResultSetHolder &holder)
{
    KNRow row;
    const qsizetype columns = resultSet.columnNames().size();
    for (int column = 1; column <= columns; ++column)
        row.append(aggregateValue(m_dbProc, computeId, column));
    resultSet.addRows({row});
    holder.incrementTotalResultCount();
}
