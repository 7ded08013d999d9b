#include "TableDesign/MSSQLColumnTypes.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLVersionHelper.h"
#include "TableDesign/MSSQLDesignedTable.h"

#include <QRegularExpression>

#include <span>

namespace {

// Major versions.
constexpr int SQL2000 = 8;
constexpr int SQL2005 = 9;
constexpr int SQL2008 = 10;
constexpr int SQL2022 = 16;
constexpr int SQL2025 = 17;

struct Versioned
{
    const char *name;
    int since; ///< the first major version that has it
};

constexpr Versioned ColumnTypes[] = {
    {"bigint", SQL2000},        {"binary(50)", SQL2000},
    {"bit", SQL2000},           {"char(10)", SQL2000},
    {"date", SQL2008},          {"datetime", SQL2000},
    {"datetime2(7)", SQL2008},  {"datetimeoffset(7)", SQL2008},
    {"decimal(18,2)", SQL2000}, {"float", SQL2000},
    {"geography", SQL2008},     {"geometry", SQL2008},
    {"hierarchyid", SQL2008},   {"image", SQL2000},
    {"int", SQL2000},           {"json", SQL2025},
    {"money", SQL2000},         {"nchar(10)", SQL2000},
    {"ntext", SQL2000},         {"numeric(18,0)", SQL2000},
    {"nvarchar(50)", SQL2000},  {"nvarchar(max)", SQL2005},
    {"real", SQL2000},          {"smalldatetime", SQL2000},
    {"smallint", SQL2000},      {"smallmoney", SQL2000},
    {"sql_variant", SQL2000},   {"text", SQL2000},
    {"time(7)", SQL2008},       {"timestamp", SQL2000},
    {"tinyint", SQL2000},       {"uniqueidentifier", SQL2000},
    {"varbinary(50)", SQL2000}, {"varbinary(max)", SQL2005},
    {"varchar(50)", SQL2000},   {"varchar(max)", SQL2005},
    {"xml", SQL2005},
};

constexpr Versioned Defaults[] = {
    {"CURRENT_TIMESTAMP", SQL2000}, {"getdate()", SQL2000},     {"getutcdate()", SQL2000},
    {"host_name()", SQL2000},       {"newid()", SQL2000},       {"newsequentialid()", SQL2005},
    {"suser_sname()", SQL2000},     {"sysdatetime()", SQL2008}, {"sysdatetimeoffset()", SQL2008},
    {"sysutcdatetime()", SQL2008},  {"user_name()", SQL2000},
};

/// The major version of "Microsoft SQL Server 2008 (RTM) - 10.0.1600.22 (X64)". Azure's number stays at 12,
/// though it has what the newest version has.
int majorVersion(const QString &version)
{
    if (version.contains(QLatin1String("SQL Azure"), Qt::CaseInsensitive))
        return SQL2025;
    static const QRegularExpression number(QStringLiteral(" - (\\d{1,3})\\.\\d"));
    const QRegularExpressionMatch match = number.match(version);
    return match.hasMatch() ? match.captured(1).toInt() : SQL2022;
}

QStringList ofVersion(std::span<const Versioned> all, const QString &version)
{
    const int major = majorVersion(version);
    QStringList names;
    for (const Versioned &one : all) {
        if (one.since <= major)
            names.append(QString::fromLatin1(one.name));
    }
    return names;
}

QString versionOf(const VantorDBC &settings)
{
    const auto *details = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&settings);
    return details ? MSSQLVersionHelper::sharedInstance()->versionForDBC(*details) : QString();
}

} // namespace

QStringList MSSQLColumnTypes::builtIn(const QString &version)
{
    return ofVersion(ColumnTypes, version);
}

QStringList MSSQLColumnTypes::builtInDefaults(const QString &version)
{
    return ofVersion(Defaults, version);
}

QStringList MSSQLColumnTypes::defaultsOf(const VantorDBC &settings)
{
    return builtInDefaults(versionOf(settings));
}

QStringList MSSQLColumnTypes::of(const VantorDBC &settings)
{
    QStringList types = builtIn(versionOf(settings));
    MSSQLCatalogReader::read(
        settings, QStringLiteral("List_UserTypesByTypeInDatabase_NonSystem"),
        {{QStringLiteral("EXTRA_WHERE_CLAUSE"), QStringLiteral("AND is_table_type = 0")}},
        "mssql.tabledesigner.loadTypes", [&](const DatabaseResultSet &row) {
            types.append(
                MSSQLDesignedTable{row.stringForColumnIndex(0), row.stringForColumnIndex(1)}.quoted());
        });
    return types;
}
