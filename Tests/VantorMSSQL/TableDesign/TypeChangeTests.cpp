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
    EXPECT_EQ(count("nvarchar(20)", "varchar(max)"),
              QStringLiteral("SELECT COUNT_BIG(*) FROM s.[my t] WHERE CONVERT(nvarchar(max), "
                             "CONVERT(varchar(max), c)) <> c"));
    EXPECT_EQ(count("varchar(20)", "int"),
              QStringLiteral("SELECT COUNT_BIG(*) FROM s.[my t] WHERE c IS NOT NULL AND "
                             "TRY_CONVERT(int, c) IS NULL"));
}

TEST(TypeChange, AsksNothingThatNoQueryTells)
{
    EXPECT_TRUE(count("int", "nvarchar(3)").isNull()); // a conversion cuts the text
    EXPECT_TRUE(count("int", "[dbo].[Flag]").isNull());
    EXPECT_TRUE(count("int", "int) FROM x; DROP TABLE victim; --").isNull());
}

} // namespace TypeChangeTests
