#pragma once

#include "Import/KNDatabaseImportHelper.h"

#include <QCoreApplication>

/// An import into a database of SQL Server.
class MSSQLDatabaseImportHelper : public KNDatabaseImportHelper
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLDatabaseImportHelper)

public:
    using KNDatabaseImportHelper::KNDatabaseImportHelper;

    /// A table whose rows are not adjacent in the catalog's answer is listed once for each group.
    QList<KNImportTableModelPtr> tablesForImportMapper() const override;
    /// "integer", "bigint", "decimal", or nvarchar with a power of two as its length, which may exceed the
    /// server's 4000: hintForType() then names a type that the server accepts.
    QStringList mapDataTypes(const QList<KNImportColumnAnalysis> &analyses) const override;
    KNImportTableModelPtr createImportTableModelWithPath(const QStringList &path) const override;

    KNImportTypeHint hintForType(const QString &type, const KNImportColumnAnalysis &analysis) const override;
    KNImportColumnType columnType(const QString &dataTypeDisplay) const override;
    QStringList pathFromText(const QString &text, KNError *error) const override;
    QString creationStatement(const QStringList &path,
                              const QList<KNImportTableColumnModel> &columns) const override;
    KNImportStatements statementsForTable(const QStringList &path) const override;
};
