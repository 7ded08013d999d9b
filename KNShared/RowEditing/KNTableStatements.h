#pragma once

#include "KNSharedExport.h"
#include "QueryLoader/KNStatementPair.h"
#include "RowEditing/KNEditRowColumn.h"

#include <QList>
#include <QString>

/// The statements that write rows of one table. Connectors subclass it. Pure; any thread. Columns carry their
/// name and type; values are passed beside them unless noted.
class KNSHARED_EXPORT KNTableStatements
{
public:
    virtual ~KNTableStatements();

    /// "name = value", as a SET clause lists it.
    virtual QString assignment(const KNEditRowColumn &column, const KNValue &value) const = 0;
    /// A condition for rows in which the column has this value, also NULL; null for a column that the server
    /// cannot compare.
    virtual QString condition(const KNEditRowColumn &column, const KNValue &value) const = 0;
    virtual KNStatementPair update(const QString &setClause, const QString &whereClause) const = 0;
    /// Adds a row with the current values of the modified columns.
    virtual KNStatementPair insert(const QList<KNEditRowColumn> &columns) const = 0;
    /// Adds such a row and reads it in the same batch, which knows what the server made of the key. Empty if
    /// the key cannot be known.
    virtual KNStatementPair insertAndRead(const QList<KNEditRowColumn> &columns,
                                          const QList<KNEditRowColumn> &key,
                                          const QList<KNEditRowColumn> &read) const = 0;
    /// Deletes one row by its key.
    virtual KNStatementPair remove(const QList<KNEditRowColumn> &key, const QList<KNValue> &values) const = 0;
    /// Reads these columns.
    virtual QString select(const QList<KNEditRowColumn> &columns, const QString &whereClause) const = 0;

    /// Marks the current state of an open transaction.
    virtual QString savepoint() const = 0;
    /// Returns to that state; the transaction stays open.
    virtual QString rollbackToSavepoint() const = 0;
    /// A query whose first value is a batch that restores the session's options after these statements; null
    /// if they change none.
    virtual QString optionsQuery() const = 0;
    /// Whether the user prefers the corrected statements.
    virtual bool prefersCorrected() const = 0;
};
