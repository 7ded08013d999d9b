#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "Export/KNDatabaseScripter.h"

/// The rows of a table as INSERT statements of 500 rows each, in the order of the primary key. Blocks on the
/// server.
class MSSQLTableRowsScript
{
public:
    static constexpr int RowsPerStatement = 500;

    /// Names without quotes.
    MSSQLTableRowsScript(const VantorDBC &details, const QString &schema, const QString &table);

    /// Writes nothing for an empty table. The caller checks whether the device took everything.
    KNError write(QIODevice &device, const KNScriptControl &control) const;

    /// Those columns of the table that an INSERT can set.
    QList<MSSQLColumnRecord> columns(KNError *error) const;
    /// The query of these columns in the order of the primary key.
    QString query(const QList<MSSQLColumnRecord> &columns) const;
    /// Whether its values are read and written as bytes, of which only CAST makes them.
    static bool isClrType(const MSSQLColumnRecord &column);
    static bool isVariant(const MSSQLColumnRecord &column);
    static bool isXml(const MSSQLColumnRecord &column);
    /// Comments on columns whose values lose their types; empty if there are none.
    static QString lostTypes(const QList<MSSQLColumnRecord> &columns);
    /// Whether an INSERT can set the column: its value is neither computed nor the server's.
    static bool isInserted(const MSSQLColumnRecord &column);

private:
    const VantorDBC &m_details;
    const QString m_schema;
    const QString m_table;
};
