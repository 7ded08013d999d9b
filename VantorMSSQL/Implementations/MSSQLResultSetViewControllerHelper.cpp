#include "Implementations/MSSQLResultSetViewControllerHelper.h"

#include <algorithm>

namespace {

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
