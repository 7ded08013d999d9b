#include "Foundation/KNFormat.h"
#include "Support/PrintQt.h"
#include "TableDesign/MSSQLTypeChange.h"

#include <gtest/gtest.h>

namespace TypeChangeTests {

namespace {

bool mayLose(const char *before, const char *after)
{
    return MSSQLTypeChange::mayLoseValues(QString::fromUtf8(before), QString::fromUtf8(after));
}

QString count(const char *before, const char *after)
{
    return MSSQLTypeChange::countQuery({QStringLiteral("s"), QStringLiteral("my t")}, QStringLiteral("c"),
                                       QString::fromUtf8(before), QString::fromUtf8(after));
}

} // namespace

TEST(TypeChange, LosesNothingInAWiderTypeOfTheFamily)
{
    for (const auto &[before, after] : {std::pair("int", "bigint"),
                                        {"nvarchar(20)", "nvarchar(21)"},
                                        {"nvarchar(20)", "NVARCHAR(MAX)"},
                                        {"varchar(20)", "nvarchar(20)"},
                                        {"decimal(9,2)", "decimal(10,3)"},
                                        {"decimal(9,2)", "numeric(9,2)"},
                                        {"varbinary(8)", "varbinary(max)"},
                                        {"datetime", "datetime"},
                                        {"int", " INT "}})
        EXPECT_FALSE(mayLose(before, after)) << before << " to " << after;
}

TEST(TypeChange, MayLoseInANarrowerTypeOrAnotherFamily)
{
    for (const auto &[before, after] : {std::pair("bigint", "int"),
                                        {"nvarchar(20)", "nvarchar(19)"},
                                        {"nvarchar(max)", "nvarchar(4000)"},
                                        {"nvarchar(20)", "varchar(20)"},
                                        {"nvarchar(20)", "nvarchar"},
                                        {"decimal(9,2)", "decimal(9,3)"},
                                        {"decimal(9,2)", "decimal(9,1)"},
                                        {"varbinary(8)", "varbinary(7)"},
                                        {"int", "nvarchar(10)"},
                                        {"datetime2(7)", "datetime2(3)"},
                                        {"datetime", "date"},
                                        {"int", "[dbo].[Flag]"}})
        EXPECT_TRUE(mayLose(before, after)) << before << " to " << after;
}

TEST(TypeChange, CountsWhatDoesNotFit)
{
    EXPECT_EQ(count("bigint", "tinyint"),
              QStringLiteral("SELECT COUNT_BIG(*) FROM s.[my t] WHERE c < 0 OR c > 255"));
    EXPECT_EQ(count("nvarchar(20)", "nvarchar(5)"),
              QStringLiteral("SELECT COUNT_BIG(*) FROM s.[my t] WHERE DATALENGTH(c) > 10"));
    EXPECT_EQ(count("nchar(20)", "nchar(5)"),
              QStringLiteral("SELECT COUNT_BIG(*) FROM s.[my t] WHERE DATALENGTH(RTRIM(c)) > 10"));
    EXPECT_EQ(count("nvarchar(20)", "varchar(max)"),
              QStringLiteral("SELECT COUNT_BIG(*) FROM s.[my t] WHERE CONVERT(varbinary(max), "
                             "CONVERT(nvarchar(max), CONVERT(varchar(max), c))) <> CONVERT(varbinary(max), "
                             "CONVERT(nvarchar(max), c))"));
    EXPECT_EQ(count("varchar(20)", "int"),
              QStringLiteral("SELECT COUNT_BIG(*) FROM s.[my t] WHERE c IS NOT NULL AND CASE WHEN "
                             "CONVERT(nvarchar(max), TRY_CONVERT(int, c)) = c THEN 0 ELSE 1 END = 1"));
}

TEST(TypeChange, CountsWhatIsRoundedOrCut)
{
    for (const auto &[before, after] : {std::pair("decimal(9,2)", "decimal(9,1)"),
                                        {"float", "int"},
                                        {"money", "decimal(9,2)"},
                                        {"datetime", "date"},
                                        {"datetime2(7)", "datetime2(3)"},
                                        {"datetime2(7)", "smalldatetime"},
                                        {"datetimeoffset(7)", "datetime2(7)"}})
        EXPECT_EQ(count(before, after),
                  KNFormat("SELECT COUNT_BIG(*) FROM s.[my t] WHERE c IS NOT NULL AND CASE WHEN "
                           "TRY_CONVERT(%s, TRY_CONVERT(%s, c)) = c THEN 0 ELSE 1 END = 1",
                           before, after));
}

TEST(TypeChange, AsksNothingThatNoQueryTells)
{
    EXPECT_TRUE(count("int", "nvarchar(3)").isNull());          // a conversion cuts the text
    EXPECT_TRUE(count("varchar(20)", "decimal(9,2)").isNull()); // a conversion rounds the number
    EXPECT_TRUE(count("xml", "int").isNull());
    EXPECT_TRUE(count("int", "[dbo].[Flag]").isNull());
    EXPECT_TRUE(count("[dbo].[Flag]", "int").isNull());
    EXPECT_TRUE(count("int", "int) FROM x; DROP TABLE victim; --").isNull());
}

} // namespace TypeChangeTests
