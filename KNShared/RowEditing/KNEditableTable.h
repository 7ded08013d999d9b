#pragma once

#include "KNSharedExport.h"
#include "RowEditing/KNEditRowColumn.h"

#include <QCoreApplication>
#include <QList>
#include <QStringList>

#include <optional>

class ResultSetViewControllerHelper;

/// The table whose rows a result shows, and how the result's columns belong to it. A value type of any
/// thread.
class KNSHARED_EXPORT KNEditableTable
{
    Q_DECLARE_TR_FUNCTIONS(KNEditableTable)

public:
    QString name;                                  ///< without quotes
    QString schema;                                ///< without quotes
    QList<std::optional<KNEditRowColumn>> columns; ///< of the result; nothing where it is no table column
    QList<int> key;                                ///< the result columns of the primary key, in its order

    /// The column of the table behind a result column, from 0; null if statements cannot set it.
    const KNEditRowColumn *writableColumn(int column) const;

    /// Decides whether rows of a result can be edited, once the helper has loaded the key of this table.
    /// `reason` says why not, as a text that follows "Read-only: ".
    static std::optional<KNEditableTable> of(const QStringList &resultColumns,
                                             const ResultSetViewControllerHelper &helper,
                                             const QString &table, const QString &schema,
                                             const QList<KNEditRowColumn> &tableColumns, QString *reason);
};
