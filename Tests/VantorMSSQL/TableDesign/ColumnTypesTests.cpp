#include "Support/PrintQt.h"
#include "TableDesign/MSSQLColumnTypes.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ColumnTypesTests {

namespace {

QStringList typesOf(const char *version)
{
    return MSSQLColumnTypes::builtIn(QString::fromUtf8(version));
}

/// Which of the types that not all versions have are offered.
QStringList laterTypesOf(const char *version)
{
    static const QStringList later{QStringLiteral("date"),
                                   QStringLiteral("datetime2(7)"),
                                   QStringLiteral("datetimeoffset(7)"),
                                   QStringLiteral("geography"),
                                   QStringLiteral("geometry"),
                                   QStringLiteral("hierarchyid"),
                                   QStringLiteral("json"),
                                   QStringLiteral("nvarchar(max)"),
                                   QStringLiteral("time(7)"),
                                   QStringLiteral("varbinary(max)"),
                                   QStringLiteral("varchar(max)"),
                                   QStringLiteral("xml")};
    QStringList found;
    for (const QString &type : typesOf(version)) {
        if (later.contains(type))
            found.append(type);
    }
    return found;
}

const QString Of2005 = QStringLiteral("nvarchar(max) varbinary(max) varchar(max) xml");
const QString Of2008 =
    QStringLiteral("date datetime2(7) datetimeoffset(7) geography geometry hierarchyid nvarchar(max) time(7) "
                   "varbinary(max) varchar(max) xml");
const QString Newest =
    QStringLiteral("date datetime2(7) datetimeoffset(7) geography geometry hierarchyid json nvarchar(max) "
                   "time(7) varbinary(max) varchar(max) xml");

} // namespace

TEST(ColumnTypes, AreThoseOfTheServersVersion)
{
    EXPECT_EQ(laterTypesOf("Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)"), QStringList());
    EXPECT_EQ(laterTypesOf("Microsoft SQL Server 2005 - 9.00.5000.00 (X64)"), Of2005.split(u' '));
    EXPECT_EQ(laterTypesOf("Microsoft SQL Server 2008 (RTM) - 10.0.1600.22 (X64)"), Of2008.split(u' '));
    EXPECT_EQ(laterTypesOf("Microsoft SQL Server 2022 (RTM) - 16.0.1000.6 (X64)"), Of2008.split(u' '));
    EXPECT_EQ(laterTypesOf("Microsoft SQL Server 2025 (RTM) - 17.0.1000.7 (X64)"), Newest.split(u' '));
    EXPECT_EQ(laterTypesOf("Microsoft SQL Azure (RTM) - 12.0.2000.8"), Newest.split(u' '));
}

TEST(ColumnTypes, AreThoseOfACommonVersionWithoutABanner)
{
    for (const char *version : {"", "Some server", "Microsoft SQL Server 2022"})
        EXPECT_EQ(laterTypesOf(version), Of2008.split(u' ')) << version;
}

TEST(ColumnTypes, AreSortedAndHoldWhatEveryVersionHas)
{
    const QStringList types = typesOf("Microsoft SQL Server  2000 - 8.00.194 (Intel X86)");
    EXPECT_TRUE(std::is_sorted(types.begin(), types.end()));
    EXPECT_EQ(types.size(), 25);
    for (const char *type : {"int", "nvarchar(50)", "ntext", "datetime", "sql_variant", "timestamp"})
        EXPECT_TRUE(types.contains(QString::fromLatin1(type))) << type;
}

} // namespace ColumnTypesTests
