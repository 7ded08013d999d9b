#include "RowEditing/KNRowChange.h"

#include "Database/KNRowReader.h"
#include "Foundation/KNFormat.h"

#include <algorithm>

namespace {

struct RowChangeTexts
{
    Q_DECLARE_TR_FUNCTIONS(KNRowChange)
};

/// Makes the changes of one result.
class Maker
{
public:
    Maker(const KNRowEdits &edits, const KNEditableTable &table, const KNDatabaseResultSet &result,
          const KNTableStatements &statements)
        : m_edits(edits)
        , m_table(table)
        , m_statements(statements)
        , m_reader(result.rows())
    {
        for (const int column : table.key)
            m_key.append(*table.columns[column]);
        for (const auto &column : table.columns) {
            if (column)
                m_read.append(*column);
        }
    }

    KNRowChange changeOf(KNRowEdits::RowId row, QString *problem)
    {
        const KNRowEdits::Row &edited = *m_edits.row(row);
        KNRowChange change;
        change.row = row;
        if (KNRowEdits::isNew(row)) {
            change.kind = KNRowChange::Kind::Insert;
            change.rowName = RowChangeTexts::tr("The new row");
            insert(edited, &change);
            return change;
        }
        const QList<KNValue> key = keyOf(row);
        change.rowName = nameOf(key);
        if (std::any_of(key.begin(), key.end(), [](const KNValue &value) { return value.isNull(); }))
            *problem =
                KNFormat(RowChangeTexts::tr("A row cannot be changed: its key %@ is NULL."), change.rowName);
        else if (edited.isDeleted)
            remove(key, &change);
        else
            update(row, key, edited, &change);
        return change;
    }

private:
    KNValue stored(KNRowEdits::RowId row, int column) { return m_reader.cell(row, column).storedValue(); }

    QList<KNValue> keyOf(KNRowEdits::RowId row)
    {
        QList<KNValue> values;
        for (const int column : m_table.key)
            values.append(stored(row, column));
        return values;
    }

    QString nameOf(const QList<KNValue> &key) const
    {
        constexpr qsizetype Longest = 100;
        QStringList parts;
        for (qsizetype i = 0; i < key.size(); ++i)
            parts.append(m_key[i].columnName + QLatin1Char(' ') +
                         (key[i].isNull() ? QStringLiteral("NULL") : key[i].displayText().left(Longest)));
        return parts.join(QLatin1String(", "));
    }

    QString conditionOf(const QList<KNValue> &key) const
    {
        QStringList conditions;
        for (qsizetype i = 0; i < key.size(); ++i)
            conditions.append(m_statements.condition(m_key[i], key[i]));
        return conditions.join(QLatin1String(" AND "));
    }

    void remove(const QList<KNValue> &key, KNRowChange *change) const
    {
        change->kind = KNRowChange::Kind::Delete;
        change->statement = m_statements.remove(m_key, key);
    }

    /// The condition has the old values, too: a value that somebody else has changed is not overwritten.
    void update(KNRowEdits::RowId row, QList<KNValue> key, const KNRowEdits::Row &edited, KNRowChange *change)
    {
        constexpr std::size_t LongestCompared = 4000; // bytes
        QStringList assignments;
        QStringList conditions = {conditionOf(key)};
        for (auto each = edited.values.begin(); each != edited.values.end(); ++each) {
            const int column = each.key();
            assignments.append(m_statements.assignment(*m_table.columns[column], each.value()));
            const qsizetype keyPart = m_table.key.indexOf(column);
            if (keyPart >= 0) {
                key[keyPart] = each.value();
                continue;
            }
            if (m_reader.cell(row, column).length > LongestCompared)
                continue;
            const QString unchanged = m_statements.condition(*m_table.columns[column], stored(row, column));
            if (!unchanged.isNull())
                conditions.append(unchanged);
        }
        change->statement = m_statements.update(assignments.join(QLatin1String(",\r\n\t")),
                                                conditions.join(QLatin1String(" AND ")));
        change->readBack = m_statements.select(m_read, conditionOf(key));
    }

    void insert(const KNRowEdits::Row &edited, KNRowChange *change) const
    {
        QList<KNEditRowColumn> columns;
        for (auto each = edited.values.begin(); each != edited.values.end(); ++each) {
            columns.append(*m_table.columns[each.key()]);
            columns.last().columnCurrentValue = each.value();
            columns.last().hasBeenModified = true;
        }
        change->statement = m_statements.insert(columns);
        QList<KNValue> key;
        for (const int column : m_table.key)
            key.append(edited.values.value(column));
        if (std::none_of(key.begin(), key.end(), [](const KNValue &value) { return value.isNull(); }))
            change->readBack = m_statements.select(m_read, conditionOf(key));
        else
            insertAndRead(columns, change);
    }

    void insertAndRead(const QList<KNEditRowColumn> &columns, KNRowChange *change) const
    {
        const KNStatementPair statement = m_statements.insertAndRead(columns, m_key, m_read);
        if (statement.exact.isEmpty())
            return;
        change->statement = statement;
        change->readColumns = m_read.size();
    }

    const KNRowEdits &m_edits;
    const KNEditableTable &m_table;
    const KNTableStatements &m_statements;
    KNRowReader m_reader;
    QList<KNEditRowColumn> m_key;
    QList<KNEditRowColumn> m_read; ///< the result's columns that belong to the table
};

} // namespace

QList<KNRowChange> KNRowChange::listOf(const KNRowEdits &edits, const KNEditableTable &table,
                                       const KNDatabaseResultSet &result, const KNTableStatements &statements,
                                       QString *problem)
{
    problem->clear();
    Maker maker(edits, table, result, statements);
    QList<KNRowChange> changes;
    for (const KNRowEdits::RowId row : edits.changedRows()) {
        changes.append(maker.changeOf(row, problem));
        if (!problem->isEmpty())
            return {};
    }
    std::stable_sort(changes.begin(), changes.end(),
                     [](const KNRowChange &a, const KNRowChange &b) { return a.kind < b.kind; });
    return changes;
}

KNStatementPair KNRowChange::script(const QList<KNRowChange> &changes)
{
    const QLatin1String separator("\r\nGO\r\n");
    QStringList exact, corrected, differences;
    for (const KNRowChange &change : changes) {
        exact.append(change.statement.exact);
        corrected.append(change.statement.corrected);
        if (change.statement.differs() && !differences.contains(change.statement.difference))
            differences.append(change.statement.difference);
    }
    return {exact.join(separator), corrected.join(separator), differences.join(QLatin1Char(' '))};
}
