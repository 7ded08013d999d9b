#pragma once

#include "Database/VantorDBC.h"
#include "Import/KNImportColumnAnalysis.h"
#include "Import/KNImportColumnType.h"
#include "Import/KNImportTableModel.h"

/// A remark on the type that mapDataTypes() proposes, for the user who is about to create a table with it.
struct KNImportTypeHint
{
    QString text; ///< a sentence; null for none
    QString type; ///< the type to use instead
};

/// The statements around the rows of an import; none of them reads a value.
struct KNImportStatements
{
    QString truncate;       ///< deletes all rows of the table
    QString allowIdentity;  ///< lets the session write the identity column of the table
    QString forbidIdentity; ///< ends that
    QString savepoint;      ///< marks a point of the open transaction, in place of an earlier one
    QString rollbackToSavepoint;
};

/// Everything that an import asks about the kind of server. Connectors subclass it. Keeps a copy of the
/// settings. Used by one thread at a time.
class KNSHARED_EXPORT KNDatabaseImportHelper
{
public:
    explicit KNDatabaseImportHelper(const VantorDBC &details);
    virtual ~KNDatabaseImportHelper();
    KNDatabaseImportHelper(const KNDatabaseImportHelper &) = delete;
    KNDatabaseImportHelper &operator=(const KNDatabaseImportHelper &) = delete;

    const VantorDBC &databaseConnectionDetails() const { return *m_details; }

    /// The tables of the database that an import can fill; none, with a line in the log, after an error.
    /// Blocks on the server.
    virtual QList<KNImportTableModelPtr> tablesForImportMapper() const = 0;
    /// Proposes a type for each analysed column.
    virtual QStringList mapDataTypes(const QList<KNImportColumnAnalysis> &analyses) const = 0;
    /// A table with this path and no columns.
    virtual KNImportTableModelPtr createImportTableModelWithPath(const QStringList &path) const = 0;

    /// The hint for a column with this analysis whose type is `type`. Pure.
    virtual KNImportTypeHint hintForType(const QString &type,
                                         const KNImportColumnAnalysis &analysis) const = 0;
    /// Reads a type's name as catalogs and people write it. Pure.
    virtual KNImportColumnType columnType(const QString &dataTypeDisplay) const = 0;
    /// Splits the path of a table as people enter it; empty, with an error, if it is none. Pure.
    virtual QStringList pathFromText(const QString &text, KNError *error) const = 0;
    /// The statement that creates a table with these columns. Pure.
    virtual QString creationStatement(const QStringList &path,
                                      const QList<KNImportTableColumnModel> &columns) const = 0;
    virtual KNImportStatements statementsForTable(const QStringList &path) const = 0;

private:
    const VantorDBCPtr m_details;
};
