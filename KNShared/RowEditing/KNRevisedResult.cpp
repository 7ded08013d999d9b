#include "RowEditing/KNRevisedResult.h"

#include "Database/KNRowReader.h"

#include <algorithm>

namespace {

class Reviser
{
public:
    Reviser(const KNDatabaseResultSet &result, const KNEditableTable &table, const KNRowEdits &edits,
            const KNRowApplication &applied, KNDatabaseResultSet &revised)
        : m_table(table)
        , m_edits(edits)
        , m_applied(applied)
        , m_reader(result.rows())
        , m_rows(revised.rows())
        , m_columnCount(static_cast<int>(result.columnNames().size()))
    {
    }

    void appendStored(qsizetype row)
    {
        const KNRowEdits::Row *const edited = m_edits.row(row);
        if (edited && (edited->isDeleted || wasReadWithoutRow(row)))
            return;
        m_reader.seek(row);
        m_rows.beginRow();
        for (int column = 0; column < m_columnCount; ++column)
            appendCell(row, edited, column, m_reader.next());
        m_rows.endRow();
    }

    void appendNew(KNRowEdits::RowId row)
    {
        m_rows.beginRow();
        for (int column = 0; column < m_columnCount; ++column)
            appendCell(row, m_edits.row(row), column, {});
        m_rows.endRow();
    }

private:
    bool wasReadWithoutRow(KNRowEdits::RowId row) const
    {
        const KNDatabaseResultSetPtr read = m_applied.readRows().value(row);
        return read && read->rows().rowCount() == 0;
    }

    void appendCell(KNRowEdits::RowId row, const KNRowEdits::Row *edited, int column, const KNRowCell &stored)
    {
        const KNDatabaseResultSetPtr read = edited ? m_applied.readRows().value(row) : nullptr;
        if (read && read->rows().rowCount() > 0 && m_table.columns[column])
            m_rows.appendCell(KNRowReader(read->rows()).cell(0, positionOf(column)));
        else if (edited && edited->values.contains(column))
            m_rows.appendValue(edited->values.value(column));
        else
            m_rows.appendCell(stored);
    }

    /// Of a column among those of the table, which are read again.
    qsizetype positionOf(int column) const
    {
        return std::count_if(m_table.columns.begin(), m_table.columns.begin() + column,
                             [](const auto &each) { return each.has_value(); });
    }

    const KNEditableTable &m_table;
    const KNRowEdits &m_edits;
    const KNRowApplication &m_applied;
    KNRowReader m_reader;
    KNRowStore &m_rows;
    const int m_columnCount;
};

} // namespace

KNDatabaseResultSetPtr KNRevisedResult(const KNDatabaseResultSet &result, const KNEditableTable &table,
                                       const KNRowEdits &edits, const KNRowApplication &applied)
{
    auto revised = std::make_shared<KNDatabaseResultSet>(result.executedQuery());
    revised->setColumns(result.columnNames(), result.columnTypes());
    Reviser reviser(result, table, edits, applied, *revised);
    for (qsizetype row = 0; row < result.rows().rowCount(); ++row)
        reviser.appendStored(row);
    for (const KNRowEdits::RowId row : edits.newRows())
        reviser.appendNew(row);
    revised->rows().publish();
    revised->setFinished();
    return revised;
}
