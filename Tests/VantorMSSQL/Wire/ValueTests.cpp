#include "VantorMSSQL/Wire/WireTest.h"

#include <map>

namespace ValueTests {

using namespace WireTest;

namespace {

struct Expectation
{
    const char *sql;
    const char *shown;  ///< what the value shows
    KNValue::Kind kind; ///< for servers of the newest protocol
};

using Kind = KNValue::Kind;

const Expectation expectations[] = {
    {"CAST(0 AS tinyint)", "0", Kind::Int32},
    {"CAST(255 AS tinyint)", "255", Kind::Int32},
    {"CAST(-32768 AS smallint)", "-32768", Kind::Int32},
    {"CAST(-2147483648 AS int)", "-2147483648", Kind::Int32},
    {"CAST(9223372036854775807 AS bigint)", "9223372036854775807", Kind::Int64},
    {"CAST(-9223372036854775808 AS bigint)", "-9223372036854775808", Kind::Int64},
    {"CAST(1 AS bit)", "1", Kind::Bool},
    {"CAST(0 AS bit)", "0", Kind::Bool},
    {"CAST(0.1 AS real)", "0.1", Kind::Float},
    {"CAST(0.1 AS float)", "0.1", Kind::Double},
    {"CAST(-1.7976931348623157E308 AS float)", "-1.7976931348623157e+308", Kind::Double},
    {"CAST(-214748.3648 AS smallmoney)", "-214748.36", Kind::Float},
    {"CAST(922337203685477.5807 AS money)", "922337203685477.5807", Kind::Decimal},
    {"CAST(-0.0001 AS money)", "-0.0001", Kind::Decimal},
    {"CAST(12345678901234567890123456789012345678 AS decimal(38,0))",
     "12345678901234567890123456789012345678", Kind::Decimal},
    {"CAST(-99999999999999999999999999999999999999 AS decimal(38,0))",
     "-99999999999999999999999999999999999999", Kind::Decimal},
    {"CAST(-0.00000000000000000000000000000000000001 AS decimal(38,38))",
     "-0.00000000000000000000000000000000000001", Kind::Decimal},
    {"CAST(1.50 AS numeric(9,2))", "1.50", Kind::Decimal},
    {"CAST('2079-06-06 23:59' AS smalldatetime)", "2079-06-06 23:59:00", Kind::Date},
    {"CAST('1753-01-01' AS datetime)", "1753-01-01 00:00:00.000", Kind::Date},
    {"CAST('9999-12-31 23:59:59.997' AS datetime)", "9999-12-31 23:59:59.997", Kind::Date},
    {"CAST('1900-01-01' AS datetime)", "1900-01-01 00:00:00.000", Kind::Date},
    {"CAST('0001-01-01' AS date)", "0001-01-01", Kind::Date},
    {"CAST('9999-12-31' AS date)", "9999-12-31", Kind::Date},
    {"CAST('23:59:59.9999999' AS time(7))", "23:59:59.9999999", Kind::Date},
    {"CAST('12:34:56' AS time(0))", "12:34:56", Kind::Date},
    {"CAST('0001-01-01 00:00:00' AS datetime2(0))", "0001-01-01 00:00:00", Kind::Date},
    {"CAST('9999-12-31 23:59:59.9999999' AS datetime2(7))", "9999-12-31 23:59:59.9999999", Kind::Date},
    {"CAST('2020-01-02 03:04:05.123' AS datetime2(3))", "2020-01-02 03:04:05.123", Kind::Date},
    {"CAST('abc' AS char(5))", "abc  ", Kind::Text},
    {"CAST('a,\"b\"' AS varchar(10))", "a,\"b\"", Kind::Text},
    {"CAST('' AS varchar(10))", "", Kind::Text},
    {"CAST('long text' AS text)", "long text", Kind::Text},
    {"CAST(N'naïve 🐘' AS nvarchar(20))", "naïve 🐘", Kind::Text},
    {"CAST(N'日本' AS nchar(3))", "日本 ", Kind::Text},
    {"CAST(N'Ω' AS ntext)", "Ω", Kind::Text},
    {"CAST('m' AS varchar(max))", "m", Kind::Text},
    {"CAST(N'ñ' AS nvarchar(max))", "ñ", Kind::Text},
    {"CAST(0x00FF AS binary(3))", "0x00FF00", Kind::Bytes},
    {"CAST(0x0AFF AS varbinary(10))", "0x0AFF", Kind::Bytes},
    {"CAST(0x AS varbinary(10))", "0x", Kind::Bytes},
    {"CAST(0xDEAD AS varbinary(max))", "0xDEAD", Kind::Bytes},
    {"CAST(0xBEEF AS image)", "0xBEEF", Kind::Bytes},
    {"CAST('6F9619FF-8B86-D011-B42D-00C04FC964FF' AS uniqueidentifier)",
     "6F9619FF-8B86-D011-B42D-00C04FC964FF", Kind::Text},
    {"CAST(N'<a>1</a>' AS xml)", "<a>1</a>", Kind::Text},
    {"CAST(0x58 AS hierarchyid)", "0x58", Kind::Bytes},
    {"CAST('2020-01-02 05:04:05.1234567 +02:00' AS datetimeoffset(7))", "2020-01-02 05:04:05:1234567 +02:00",
     Kind::Text},
};

const char *const types[] = {
    "tinyint",
    "smallint",
    "int",
    "bigint",
    "bit",
    "real",
    "float",
    "smallmoney",
    "money",
    "decimal(38,10)",
    "smalldatetime",
    "datetime",
    "date",
    "time(3)",
    "datetime2(7)",
    "datetimeoffset(7)",
    "char(5)",
    "varchar(5)",
    "varchar(max)",
    "text",
    "nchar(5)",
    "nvarchar(5)",
    "nvarchar(max)",
    "ntext",
    "binary(5)",
    "varbinary(5)",
    "varbinary(max)",
    "image",
    "uniqueidentifier",
    "xml",
    "hierarchyid",
    "sql_variant",
};

SampleServerFixture &serverOf(const std::string &version)
{
    static std::map<std::string, std::unique_ptr<SampleServerFixture>> servers;
    auto &server = servers[version];
    if (!server)
        server = std::make_unique<SampleServerFixture>(SampleServerFixture::Options{{"--tds", version}, {}});
    return *server;
}

class Values : public testing::TestWithParam<const char *>
{
protected:
    std::unique_ptr<MSSQLClient> client = connectedClient(settings(serverOf(GetParam()).port()));
    bool hasDateTypes = std::string(GetParam()) >= "7.3";
};

bool isNewDateType(const QByteArray &sql)
{
    return sql.contains("AS datetime2") || sql.contains("AS datetimeoffset") || sql.contains("AS time") ||
           sql.contains("AS date)");
}

std::string nameOf(const testing::TestParamInfo<const char *> &info)
{
    std::string name = info.param;
    return "Tds" + name.erase(1, 1);
}

} // namespace

TEST_P(Values, ArriveAsStored)
{
    for (const Expectation &expected : expectations) {
        const KNValue value = scalar(*client, QStringLiteral("SELECT ") + QString::fromUtf8(expected.sql));
        const std::string shown = value.displayText().toStdString();
        // Older protocols carry the newer date types as text.
        if (isNewDateType(expected.sql) && !hasDateTypes) {
            EXPECT_TRUE(value.isText()) << expected.sql;
            if (!QByteArray(expected.sql).contains("datetimeoffset")) {
                EXPECT_EQ(shown, expected.shown) << expected.sql;
            }
            continue;
        }
        EXPECT_EQ(shown, expected.shown) << expected.sql;
        EXPECT_EQ(static_cast<int>(value.kind()), static_cast<int>(expected.kind)) << expected.sql;
    }
}

TEST_P(Values, OfEveryTypeCanBeNull)
{
    for (const char *type : types) {
        const QString sql =
            QStringLiteral("SELECT CAST(NULL AS ") + QString::fromLatin1(type) + QStringLiteral(") AS n, 1");
        KNError error;
        const auto cursor = client->executeQuery(sql, &error);
        ASSERT_TRUE(cursor) << type << ' ' << error.localizedDescription().toStdString();
        ASSERT_TRUE(cursor->next()) << type;
        EXPECT_TRUE(cursor->objectForColumnIndex(0).isNull()) << type;
        EXPECT_EQ(cursor->objectForColumnIndex(1), KNValue(1)) << type;
    }
}

TEST_P(Values, RowsOfManyNullsKeepTheirColumns)
{
    const auto results =
        run(*client, QStringLiteral("SELECT NULL, 1, NULL, N'x', NULL, CAST(NULL AS money), 0x01, NULL"));
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0]->rows().row(0),
              (KNRow{KNValue(), KNValue(1), KNValue(), KNValue(QStringLiteral("x")), KNValue(), KNValue(),
                     KNValue(QByteArray("\1")), KNValue()}));
}

TEST_P(Values, AVariantIsReadAsABoolean)
{
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT CAST(7 AS sql_variant)")), KNValue(true));
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT CAST(0 AS sql_variant)")), KNValue(false));
}

INSTANTIATE_TEST_SUITE_P(Protocols, Values, testing::Values("7.1", "7.2", "7.3", "7.4"), nameOf);

TEST(LongValues, ArriveWhole)
{
    const auto client = connectedClient();
    const KNValue text =
        scalar(*client, QStringLiteral("SELECT REPLICATE(CAST(N'ä' AS nvarchar(max)), 1000000)"));
    EXPECT_EQ(text.text(), QString(1'000'000, QChar(u'ä')));
    EXPECT_EQ(
        scalar(*client,
               QStringLiteral("SELECT CAST(REPLICATE(CAST('b' AS varchar(max)), 100000) AS varbinary(max))"))
            .bytes(),
        QByteArray(100'000, 'b'));
}

TEST(OddNames, OfColumnsArriveWhole)
{
    const auto client = connectedClient();
    const QString longName(128, QChar(u'ñ'));
    const auto results = run(
        *client, QStringLiteral("SELECT 1 AS [a]]b], 2 AS [\"q\" 'x'.y], 3 AS [🐘], 4 AS [%1]").arg(longName));
    ASSERT_EQ(results.size(), 1);
    EXPECT_EQ(results[0]->columnNames(), (QStringList{QStringLiteral("a]b"), QStringLiteral("\"q\" 'x'.y"),
                                                      QStringLiteral("🐘"), longName}));
}

} // namespace ValueTests
