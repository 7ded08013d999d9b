#include "RowEditing/MSSQLResultSetViewControllerHelper.h"

#include "Catalog/MSSQLPrimaryKeyRecord.h"
#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLQuoting.h"
#include "RowEditing/MSSQLEditRowHelper.h"
#include "RowEditing/MSSQLQueryPatterns.h"
#include "RowEditing/MSSQLTableStatements.h"
#include "Scripts/MSSQLScriptDeleteDataFromTableQueryLoader.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

/// The schema in which the session looks for names without one; null with an error.
QString currentSchema(VantorDatabaseClient &client, KNError *error)
{
    QString schema;
    const auto rows = client.executeQuery(QStringLiteral("SELECT SCHEMA_NAME()"), error);
    while (rows && !*error && rows->next())
        schema = rows->stringForColumnIndex(0);
    return schema;
}

const QString DateAndTimeFormat = QStringLiteral("yyyy-MM-dd HH:mm:ss:zzz");
const QString DateFormat = QStringLiteral("yyyy-MM-dd");
const QString TimeFormat = QStringLiteral("HH:mm:ss:zzz");

struct ColumnType
{
    int number; ///< db-lib's
    ResultSetViewControllerHelper::DataType kind;
    const char *name; ///< db-lib gives several types of the server the same number
};

using Helper = ResultSetViewControllerHelper;

constexpr ColumnType knownTypes[] = {
    {34, Helper::Other, "image"},
    {35, Helper::Text, "text"},
    {36, Helper::Other, "uniqueidentifier"},
    {40, Helper::Date, "date"},
    {41, Helper::Time, "time"},
    {42, Helper::DateAndTime, "datetime2"},
    {43, Helper::Text, "datetimeoffset"},
    {45, Helper::Other, "binary, varbinary"},
    {47, Helper::Text, "char, varchar, nchar, nvarchar"},
    {48, Helper::Integer, "tinyint"},
    {50, Helper::Boolean, "bit"},
    {51, Helper::Time, "time"},
    {52, Helper::Integer, "smallint"},
    {56, Helper::Integer, "int"},
    {58, Helper::DateAndTime, "smalldatetime"},
    {59, Helper::Real, "real"},
    {60, Helper::Other, "money"},
    {61, Helper::DateAndTime, "datetime"},
    {62, Helper::Real, "float"},
    {98, Helper::Boolean, "sql_variant"},
    {106, Helper::Real, "decimal"},
    {108, Helper::Real, "numeric"},
    {111, Helper::DateAndTime, "datetime, smalldatetime"},
    {122, Helper::Other, "smallmoney"},
    {127, Helper::Integer, "bigint"},
    {188, Helper::Time, "time"},
    {240, Helper::Other, "CLR type"},
    {241, Helper::Other, "xml"},
};

const ColumnType *columnType(const QList<int> &numbers, qsizetype column)
{
    if (column < 0 || column >= numbers.size())
        return nullptr;
    const auto *const found = std::find_if(std::begin(knownTypes), std::end(knownTypes),
                                           [&](const ColumnType &t) { return t.number == numbers[column]; });
    return found == std::end(knownTypes) ? nullptr : found;
}

} // namespace

MSSQLResultSetViewControllerHelper::MSSQLResultSetViewControllerHelper(const VantorDBC &details)
    : m_details(details.copy())
{
}

MSSQLResultSetViewControllerHelper::~MSSQLResultSetViewControllerHelper() = default;

int MSSQLResultSetViewControllerHelper::dataTypeForTableColumnIndex(qsizetype columnIndex,
                                                                    const KNValue &) const
{
    const ColumnType *const type = columnType(columnTypes(), columnIndex);
    return type ? type->kind : Other;
}

QString MSSQLResultSetViewControllerHelper::typeNameForColumn(qsizetype column) const
{
    const ColumnType *const type = columnType(columnTypes(), column);
    return type ? QString::fromLatin1(type->name) : QString();
}

QString MSSQLResultSetViewControllerHelper::remarkForColumn(qsizetype column) const
{
    constexpr int Variant = 98;
    if (columnTypes().value(column) != Variant)
        return {};
    return QStringLiteral("The type of a sql_variant's value is not known here, so its bytes are shown. "
                          "CAST(column AS nvarchar(4000)) in the query shows it as text.");
}

QString MSSQLResultSetViewControllerHelper::stringForValue(const KNValue &value, qsizetype column,
                                                           bool allowTruncate) const
{
    if (value.kind() != KNValue::Kind::Date)
        return ResultSetViewControllerHelper::stringForValue(value, column, allowTruncate);
    switch (dataTypeForTableColumnIndex(column, value)) {
    case DateAndTime:
        return value.date().toString(DateAndTimeFormat);
    case Time:
        if (value.dateTime().ticks == KNDateTime::TicksPerDay)
            return QStringLiteral("24:00:00:000"); // QTime cannot represent it
        return value.date().toString(TimeFormat);
    default:
        return value.date().toString(DateFormat);
    }
}

std::shared_ptr<const MSSQLResultSetViewControllerHelper> MSSQLResultSetViewControllerHelper::shared() const
{
    return std::static_pointer_cast<const MSSQLResultSetViewControllerHelper>(shared_from_this());
}

QString MSSQLResultSetViewControllerHelper::readOnlyReason() const
{
    if (executedQuery().size() > LongestQuery)
        return MSSQLSourceTable::tr("the query is too long");
    const QString problem = MSSQLSourceTable::of(executedQuery()).problem();
    if (!problem.isNull())
        return problem;
    return MSSQLQueryPatterns::hasJoin(executedQuery()) ? MSSQLSourceTable::tr("joins several tables")
                                                        : QString();
}

QString MSSQLResultSetViewControllerHelper::readOnlyReasonForTable(const QString &table,
                                                                   const QString &inSchema) const
{
    if (const QString reason = readOnlyReason(); !reason.isNull())
        return reason;
    const QStringList path = MSSQLSourceTable::of(executedQuery()).path();
    const bool isSame = path.last() == table && (path.size() == 1 || path.first() == inSchema);
    if (isSame)
        return {};
    // The patterns end a name at these.
    static const QRegularExpression separators(QStringLiteral("[\\s,;\\[\\]]"));
    return path.join(QLatin1Char('.')).contains(separators)
               ? MSSQLSourceTable::tr("tables with such a name cannot be edited here")
               : MSSQLSourceTable::tr("its table could not be found");
}

void MSSQLResultSetViewControllerHelper::beginLoadingPrimaryKeys()
{
    if (executedQuery().size() > LongestQuery || MSSQLQueryPatterns::hasJoin(executedQuery()))
        return;
    const QString text = MSSQLQueryPatterns::firstTable(executedQuery());
    if (text.isNull())
        return;
    KNLogHelper::sharedInstance()->logMessage("Matched table is: %@", text);
    const auto table = MSSQLQueryPatterns::split(text);
    if (!table)
        return;
    KNDispatch::globalQueue([self = shared_from_this(), table = *table] {
        static_cast<MSSQLResultSetViewControllerHelper &>(*self).loadPrimaryKeys(table.schema, table.name);
    });
}

/// Ends without a report when the server cannot be asked.
void MSSQLResultSetViewControllerHelper::loadPrimaryKeys(QString schema, const QString &table)
{
    KNError error;
    if (schema.isNull())
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&schema](VantorDatabaseClient &client, KNError *failure) {
                schema = currentSchema(client, failure);
            },
            *m_details, &error);
    if (error || schema.isNull())
        return;
    if (!schema.isEmpty()) {
        MSSQLCatalogReader::Values values = MSSQLPrimaryKeyRecord::values(schema, table);
        values.insert(QStringLiteral("SCHEMA_AND_TABLE_NAME"), KNFormat("%@.%@", schema, table));
        const QString sql =
            MSSQLCatalogReader::text(*m_details, QString::fromLatin1(MSSQLPrimaryKeyRecord::Title), values);
        QStringList names;
        error = MSSQLCatalogReader::run(*m_details, {sql, nullptr},
                                        [&](DatabaseResultSet *rows, const KNError &failure) {
                                            names.clear();
                                            while (rows && !failure && rows->next())
                                                names.append(rows->stringForColumnIndex(0));
                                        });
        const std::lock_guard lock(m_mutex);
        m_internalPrimaryKeyNames = names;
    }
    if (error)
        return;
    KNDispatch::mainQueue([self = shared(), table, schema] {
        if (const auto reported = self->delegate())
            reported->loadedPrimaryKeysForTable(table, schema);
    });
}

QStringList MSSQLResultSetViewControllerHelper::primaryKeyColumnNames() const
{
    const std::lock_guard lock(m_mutex);
    return m_internalPrimaryKeyNames;
}

bool MSSQLResultSetViewControllerHelper::isWritableColumn(qsizetype column) const
{
    constexpr int Variant = 98;
    constexpr int ClrType = 240;
    const int type = columnTypes().value(column);
    return type != Variant && type != ClrType;
}

QString MSSQLResultSetViewControllerHelper::updateQueryForTable(const QString &table, const QString &,
                                                                const QString &setClause,
                                                                const QString &whereClause) const
{
    return KNFormat("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\t%@\r\nSET\r\n\t%@\r\nWHERE\r\n\t%@\r\n",
                    MSSQLQuoting::escapeTableNameIfRequired(table), setClause, whereClause);
}

std::shared_ptr<KNQueryLoader> MSSQLResultSetViewControllerHelper::createQueryLoaderForDeleteFromTablePath(
    const QStringList &path, const QStringList &usingColumns, const QList<QList<KNValue>> &data) const
{
    return std::make_shared<MSSQLScriptDeleteDataFromTableQueryLoader>(path, usingColumns, data);
}

std::shared_ptr<const KNTableStatements>
MSSQLResultSetViewControllerHelper::createTableStatements(const QString &table, const QString &inSchema) const
{
    const bool isQualified = MSSQLSourceTable::of(executedQuery()).path().size() > 1;
    return std::make_shared<MSSQLTableStatements>(shared(), inSchema, table, isQualified);
}

std::shared_ptr<KNEditRowHelper> MSSQLResultSetViewControllerHelper::createEditRowHelper(
    const QString &table, const QString &inSchema, const std::optional<QMap<QString, KNValue>> &values) const
{
    return std::make_shared<MSSQLEditRowHelper>(m_details, inSchema, table, values);
}
