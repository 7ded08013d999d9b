#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "QueryLoader/KNStatementPair.h"
#include "RowEditing/KNEditRowColumn.h"

#include <QMap>

#include <optional>

class MSSQLStatementCaution;

/// The statements that write one edited row and read it back. Every result holds the exact statement and its
/// corrected counterpart; null where there is none. The corrected ones do not change QUOTED_IDENTIFIER, which
/// would stay off in the session; the difference does not mention that. Pure, any thread.
class MSSQLRowStatement
{
public:
    using Values = QMap<QString, KNValue>; ///< by column name

    /// Names without quotes; `schema` may be null or empty. `columns` in the order of the catalog.
    /// `initialValues` holds the row as it was when the form opened; nothing for a new row.
    MSSQLRowStatement(const QString &schema, const QString &table, QList<KNEditRowColumn> columns,
                      std::optional<Values> initialValues);

    /// The form's columns, with their initial values where there are some. One for each record.
    static QList<KNEditRowColumn> columnsFrom(const QList<MSSQLColumnRecord> &records,
                                              const std::optional<Values> &initialValues);

    /// An UPDATE where there are initial values, and an INSERT otherwise.
    KNStatementPair generateQuery() const;
    /// The modified columns without identity ones. The corrected statement inserts the defaults when there
    /// are none.
    KNStatementPair generateInsert() const;
    /// One row. The exact statement looks for the current values of the key and never writes key columns. The
    /// corrected one looks for the initial values of the key, or of all columns in a table without key, and
    /// writes every modified column; it is null when nothing is modified or no value is known to look for.
    KNStatementPair generateUpdate() const;
    /// Reads the row by the values of its key; null when no value of it is known. The corrected statement
    /// needs all of them.
    KNStatementPair generateReadBack() const;

private:
    KNValue searchedValue(const KNEditRowColumn &column) const;
    QString correctedCondition() const;
    QString correctedUpdate() const;
    QString correctedReadBack() const;
    void cautionOfUpdate(MSSQLStatementCaution *caution) const;
    QString exactTable() const;
    QString correctedTable() const;
    MSSQLStatementCaution cautionOfTable() const;

    QString m_schema;
    QString m_table;
    QList<KNEditRowColumn> m_columns;
    std::optional<Values> m_initialValues;
};
