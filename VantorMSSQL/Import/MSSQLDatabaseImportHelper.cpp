#include "Import/MSSQLDatabaseImportHelper.h"

#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Import/MSSQLImportColumnType.h"
#include "Import/MSSQLImportTableModel.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"
#include "TableDesign/MSSQLTableScript.h"

#include <bit>

namespace {

constexpr auto TablesTitle = "List_TablesAndColumnsForImport";
constexpr int BaseType = 7; ///< position of its column

bool isSameObjectName(const QString &one, const QString &other)
{
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

/// Reads rows that are grouped by table: schema, table, column, type, whether it allows nulls, code page,
/// whether it has a default, the system type behind a user's.
QList<KNImportTableModelPtr> tablesFrom(DatabaseResultSet &rows)
{
    QList<KNImportTableModelPtr> tables;
    std::shared_ptr<MSSQLImportTableModel> current;
    while (rows.next()) {
        const QString schema = rows.stringForColumnIndex(0);
        const QString name = rows.stringForColumnIndex(1);
        if (!current || !isSameObjectName(current->schema(), schema) ||
            !isSameObjectName(current->name(), name)) {
            current = std::make_shared<MSSQLImportTableModel>();
            current->setSchema(schema);
            current->setName(name);
            tables.append(current);
        }
        current->addColumn({rows.stringForColumnIndex(2), rows.stringForColumnIndex(3),
                            rows.objectForColumnIndex(4).toBool(),
                            static_cast<int>(rows.objectForColumnIndex(5).toInt64()),
                            rows.objectForColumnIndex(6).toBool(),
                            rows.columnCount() > BaseType ? rows.stringForColumnIndex(BaseType) : QString()});
    }
    return tables;
}

QString proposedType(const KNImportColumnAnalysis &analysis)
{
    if (analysis.dataType() != KNImportColumnAnalysis::Numeric)
        return KNFormat("nvarchar(%ld)", std::bit_ceil(std::max<quint64>(analysis.maxLength(), 1)));
    if (analysis.isDecimal())
        return QStringLiteral("decimal");
    const bool isInteger = (analysis.maxNumericValue() & ~qint64(0x7fffffff)) == 0;
    return isInteger ? QStringLiteral("integer") : QStringLiteral("bigint");
}

} // namespace

QList<KNImportTableModelPtr> MSSQLDatabaseImportHelper::tablesForImportMapper() const
{
    QList<KNImportTableModelPtr> tables;
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *failure) {
            const QString sql =
                databaseConnectionDetails().queryLoader()->queryByTitle(QString::fromLatin1(TablesTitle));
            const auto rows = client.executeQuery(sql, failure);
            if (rows && !*failure)
                tables = tablesFrom(*rows);
        },
        databaseConnectionDetails(), &error);
    if (error)
        KNLogHelper::sharedInstance()->logMessage("%@ had no entries. Error: %@.", TablesTitle,
                                                  error.localizedDescription());
    return tables;
}

QStringList MSSQLDatabaseImportHelper::mapDataTypes(const QList<KNImportColumnAnalysis> &analyses) const
{
    QStringList types;
    for (const KNImportColumnAnalysis &analysis : analyses)
        types.append(proposedType(analysis));
    return types;
}

KNImportTableModelPtr MSSQLDatabaseImportHelper::createImportTableModelWithPath(const QStringList &path) const
{
    const auto table = std::make_shared<MSSQLImportTableModel>();
    table->setTablePath(path);
    return table;
}

KNImportTypeHint MSSQLDatabaseImportHelper::hintForType(const QString &type,
                                                        const KNImportColumnAnalysis &analysis) const
{
    return MSSQLImportColumnType::hint(type, analysis);
}

KNImportColumnType MSSQLDatabaseImportHelper::columnType(const QString &dataTypeDisplay) const
{
    return MSSQLImportColumnType::read(dataTypeDisplay);
}

QStringList MSSQLDatabaseImportHelper::pathFromText(const QString &text, KNError *error) const
{
    error->clear();
    const auto path = MSSQLObjectPath::entered(text.trimmed());
    if (path && (path->size() == 1 || path->size() == 2))
        return *path;
    *error = KNError(
        QStringLiteral("com.quorvex.vantor.import"), 0,
        tr("\"%1\" names no table. Write table or schema.table; a name with a dot is written in brackets.")
            .arg(text));
    return {};
}

QString MSSQLDatabaseImportHelper::creationStatement(const QStringList &path,
                                                     const QList<KNImportTableColumnModel> &columns) const
{
    QList<MSSQLColumnRecord> records;
    for (const KNImportTableColumnModel &column : columns) {
        MSSQLColumnRecord record;
        record.columnName = column.name;
        record.typeName = column.dataTypeDisplay;
        record.isNullable = column.allowsNulls;
        records.append(record);
    }
    const MSSQLDesignedTable table{path.size() > 1 ? path.first() : QString(), path.value(path.size() - 1)};
    return MSSQLTableScript::creationQueryForColumns(MSSQLTableScript::columnDefinitions(records), table)
        .corrected;
}

KNImportStatements MSSQLDatabaseImportHelper::statementsForTable(const QStringList &path) const
{
    const QString table = MSSQLObjectPath::quoted(path);
    return {KNFormat("TRUNCATE TABLE %@", table), KNFormat("SET IDENTITY_INSERT %@ ON", table),
            KNFormat("SET IDENTITY_INSERT %@ OFF", table), QStringLiteral("SAVE TRANSACTION VantorImport"),
            QStringLiteral("ROLLBACK TRANSACTION VantorImport")};
}
