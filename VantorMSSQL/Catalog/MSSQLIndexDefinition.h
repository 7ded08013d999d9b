#pragma once

#include "Catalog/MSSQLCatalogReader.h"

/// What a server knows of an index beyond its name, kind and the names of its key columns.
struct MSSQLIndexDefinition
{
    static constexpr auto Title = "List_IndexDefinitionsForTable";
    static MSSQLCatalogReader::Values values(const QString &schema, const QString &table);
    static QList<MSSQLIndexDefinition> listFrom(DatabaseResultSet &rows);

    QString indexName = {};
    QStringList descendingKeys = {}; ///< names of key columns
    QStringList includedColumns = {};
    int fillFactor = 0; ///< in percent; 0 for the server's default
    bool isPadded = false;
    bool ignoresDuplicates = false;
    bool isWithoutRecompute = false; ///< of its statistics
    bool allowsRowLocks = true;
    bool allowsPageLocks = true;
    bool isDisabled = false;
    QString filter = {};          ///< a condition; null for none
    QString compression = {};     ///< options as in WITH, for some partitions or all; null for none
    bool isSequential = false;    ///< OPTIMIZE_FOR_SEQUENTIAL_KEY
    QString dataSpace = {};       ///< filegroup or partition scheme; null for that of the table
    QString partitionColumn = {}; ///< null for a filegroup
    bool isPrimaryKey = false;    ///< the index of the primary key
};
