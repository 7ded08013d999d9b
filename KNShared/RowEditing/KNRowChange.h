#pragma once

#include "Database/KNDatabaseResultSet.h"
#include "RowEditing/KNEditableTable.h"
#include "RowEditing/KNRowEdits.h"
#include "RowEditing/KNTableStatements.h"

/// One edited row and its statement. A value type of any thread.
struct KNSHARED_EXPORT KNRowChange
{
    enum class Kind { Delete, Update, Insert };

    Kind kind = Kind::Update;
    KNRowEdits::RowId row = 0;
    QString rowName; ///< for messages, such as "OrderId 1001"
    KNStatementPair statement;
    /// Reads the table's columns of the result; null if the row or its key is not known then.
    QString readBack;
    /// The number of columns that the statement itself reads of the new row; 0 for other statements.
    qsizetype readColumns = 0;

    /// The changes of a result's rows, in the order in which they run: deletions, changes, new rows. Empty,
    /// with a sentence for the user, if a row cannot be written.
    static QList<KNRowChange> listOf(const KNRowEdits &edits, const KNEditableTable &table,
                                     const KNDatabaseResultSet &result, const KNTableStatements &statements,
                                     QString *problem);
    /// The statements of all changes, one batch for each.
    static KNStatementPair script(const QList<KNRowChange> &changes);
};
