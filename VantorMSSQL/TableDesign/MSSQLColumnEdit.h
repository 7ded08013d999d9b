#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLDesignedTable.h"

#include <QCoreApplication>
#include <QVariant>

/// The edit of one cell of a column: what the designer's grid and the terminal program do between an entered
/// value and the statements that run. Values are bools for check cells, otherwise texts. Any thread.
class MSSQLColumnEdit
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLColumnEdit)

public:
    /// In the order of the grid.
    enum Cell { Primary, Field, Type, Default, Nullable, AutoIncrement, CellCount };

    MSSQLColumnEdit(MSSQLColumnRecord column, Cell cell, QVariant value);

    static bool isCheck(Cell cell);
    static QVariant valueOf(const MSSQLColumnRecord &column, Cell cell);
    /// Why this cell of the column cannot be edited; null if it can.
    static QString refusal(const MSSQLColumnRecord &column, Cell cell);

    const MSSQLColumnRecord &before() const { return m_before; }
    /// The record with the edit. A new type replaces its length, too.
    MSSQLColumnRecord after() const;
    /// Why the edit is not made; null if it is.
    QString refusal() const;
    bool isTypeThatMayLoseValues() const;
    /// Returns the script, which runs in a transaction of its own. `columns` are those of the table before
    /// the edit. A null exact script means that nothing is to be run, with an error that the catalog could
    /// not be read. Asks the server for its version and for the primary key: any thread except the UI thread.
    KNStatementPair script(const MSSQLDesignedTable &table, const QList<MSSQLColumnRecord> &columns,
                           const VantorDBC &settings, KNError *error) const;

private:
    KNStatementPair statement(const MSSQLDesignedTable &table, const QList<MSSQLColumnRecord> &columns,
                              const VantorDBC &settings, KNError *error) const;
    KNStatementPair keyChange(const MSSQLDesignedTable &table, const QList<MSSQLColumnRecord> &columns,
                              const VantorDBC &settings, KNError *error) const;
    void logScript(const QString &script) const;

    MSSQLColumnRecord m_before;
    Cell m_cell;
    QVariant m_value;
};
