#pragma once

#include "Import/KNDatabaseImportHelper.h"
#include "Import/KNImportConverter.h"
#include "Import/KNImportFormat.h"

#include <optional>

/// A column of the target table and the values it gets.
struct KNImportColumnPlan
{
    KNImportTableColumnModel column;
    qsizetype source = -1;                ///< the file's column, from 0; -1 for the constant
    std::optional<QString> constant = {}; ///< for every row, as text; null for NULL
};

/// An import: a file, a table, and which value goes into which column.
struct KNImportPlan
{
    static constexpr qsizetype DefaultBatchRows = 500;
    static constexpr qsizetype MostBatchRows = 10'000;

    KNImportFile file;
    QStringList fileColumns; ///< as the analysis found them
    QStringList tablePath;
    QList<KNImportColumnPlan> columns;
    KNImportValueFormat values;
    bool writesIdentity = false; ///< one of the columns is the identity column
    bool truncatesFirst = false;
    qsizetype batchRows = DefaultBatchRows; ///< rows that are sent together
    QString faultFile; ///< receives the rows that are refused; null to import all rows or none
};

/// Assigns the columns of a file to those of a table. Pure; any thread.
namespace KNImportMapping {

/// The file's column for each column of the table; -1 without one.
using Sources = QList<qsizetype>;

/// Same names without regard to case.
KNSHARED_EXPORT Sources byName(const QStringList &fileColumns,
                               const QList<KNImportTableColumnModel> &columns);
KNSHARED_EXPORT Sources byPosition(const QStringList &fileColumns,
                                   const QList<KNImportTableColumnModel> &columns);
/// The names of the file's columns that no column gets.
KNSHARED_EXPORT QStringList unusedColumns(const QStringList &fileColumns, const Sources &sources);
/// The names of the columns that need a value and get none.
KNSHARED_EXPORT QStringList unfilledColumns(const QList<KNImportTableColumnModel> &columns,
                                            const QList<KNImportColumnPlan> &plans);
/// The names of the columns whose code page is not known: a server may replace characters there.
KNSHARED_EXPORT QStringList uncheckedColumns(const QList<KNImportColumnPlan> &plans,
                                             const KNDatabaseImportHelper &helper);
/// The columns of a new table: one for each of the file, with the proposed types, or, if `usesHints`, with
/// those that hold all analysed values.
KNSHARED_EXPORT QList<KNImportTableColumnModel> newColumns(const QList<KNImportColumnAnalysis> &analyses,
                                                           const KNDatabaseImportHelper &helper,
                                                           bool usesHints);

} // namespace KNImportMapping
