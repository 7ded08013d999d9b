#include "Export/DatabaseExporter.h"
#include "Export/KNScriptExport.h"
#include "Export/MSSQLDatabaseScripter.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"
#include "Scripts/MSSQLScriptTablesAsMySQLQueryLoader.h"
#include "VantorMSSQL/Scripts/MariaDb.h"
#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;

namespace {

/// How a column of MariaDB is read.
enum class As {
    Text,   ///< as text
    Number, ///< as the number's text
    Float,  ///< as a number of single precision, nine digits
    Double, ///< as one of double precision, seventeen digits
    Bytes,  ///< byte for byte, as lower-case hexadecimal digits
};

struct Value
{
    QString sql;         ///< SQL Server's literal
    QByteArray expected; ///< what MariaDB must read back
};
using Values = QList<Value>;

struct TypeCase
{
    const char *type;
    As as;
    Values values;          ///< beside NULL
    bool isWidened = false; ///< whether the script is edited before it is loaded, as the documentation says
};

/// What the documentation advises for types without a limit.
QString widened(QString script)
{
    return script.replace(QLatin1String("nvarchar(21844)"), QLatin1String("longtext"))
        .replace(QLatin1String("varchar(21844)"), QLatin1String("longtext"))
        .replace(QLatin1String("varbinary(21844)"), QLatin1String("longblob"));
}

Value value(const char *sql, const QByteArray &expected)
{
    return {QString::fromUtf8(sql), expected};
}

/// Texts that are hard to write, blanks behind them up to `width` characters as a type of fixed length has.
Values texts(qsizetype width = 0)
{
    Values values{value("''", ""),
                  value("'it''s'", "it's"),
                  value("'\\ \"and\" \\n %'", "\\ \"and\" \\n %"),
                  value("'a' + CHAR(0) + 'b'", QByteArray("a\0b", 3)),
                  value("'line' + CHAR(13) + CHAR(10) + CHAR(9)", "line\r\n\t"),
                  value("'null'", "null"),
                  value("' blanks '", " blanks ")};
    for (Value &padded : values)
        padded.expected = padded.expected.leftJustified(width, ' ');
    return values;
}

/// The same and characters of three languages; eleven of them have two or three bytes.
Values nationalTexts(qsizetype width = 0)
{
    const QByteArray text = "größe Кофе 花子";
    const qsizetype characters = QString::fromUtf8(text).size();
    return texts(width) +
           Values{value("N'größe Кофе 花子'",
                        text.leftJustified(text.size() + qMax(width - characters, qsizetype(0)), ' '))};
}

Values bytes()
{
    return {value("0x", ""), value("0x00", "00"), value("0x27005C0A", "27005c0a"),
            value("0xFFFEFD", "fffefd")};
}

/// Every type with the values that are hard to write. What MySQL refuses or loses is not among them:
/// docs/mysql-translation.md says what that is.
const QList<TypeCase> &typeCases()
{
    static const QByteArray digits = QByteArray("0123456789").repeated(300000);
    static const QByteArray cakes = QByteArray("🎂").repeated(500000);
    static const Value longText = value("REPLICATE(CAST('0123456789' AS varchar(max)), 300000)", digits);
    static const Value longNational = value("REPLICATE(CAST(N'🎂' AS nvarchar(max)), 500000)", cakes);
    static const Value cake = value("N'cake 🎂'", "cake 🎂");
    static const Value longBytes = value(
        "CAST(REPLICATE(CAST('0123456789' AS varchar(max)), 300000) AS varbinary(max))", digits.toHex());
    static const QList<TypeCase> cases{
        {"bigint",
         As::Number,
         {value("9223372036854775807", "9223372036854775807"),
          value("-9223372036854775808", "-9223372036854775808"), value("0", "0")}},
        {"int", As::Number, {value("2147483647", "2147483647"), value("-2147483648", "-2147483648")}},
        {"smallint", As::Number, {value("32767", "32767"), value("-32768", "-32768")}},
        {"tinyint", As::Number, {value("0", "0"), value("255", "255")}},
        {"bit", As::Number, {value("0", "0"), value("1", "1")}},
        {"decimal(38,10)",
         As::Number,
         {value("1234567890123456789012345678.0123456789", "1234567890123456789012345678.0123456789"),
          value("-0.0000000001", "-0.0000000001"), value("0", "0.0000000000")}},
        {"decimal(38,0)",
         As::Number,
         {value("99999999999999999999999999999999999999", "99999999999999999999999999999999999999")}},
        {"money",
         As::Number,
         {value("922337203685477.5807", "922337203685477.5807"),
          value("-922337203685477.5808", "-922337203685477.5808")}},
        {"smallmoney",
         As::Number,
         {value("12.34", "12.3400"), value("-0.0001", "-0.0001"), value("214748.3647", "214748.3647"),
          value("-214748.3648", "-214748.3648")}},
        {"float",
         As::Double,
         {value("1.7976931348623157E+308", "1.7976931348623157e+308"),
          value("-2.2250738585072014E-308", "-2.2250738585072014e-308"), value("0.1", "0.10000000000000001"),
          value("0", "0")}},
        {"real",
         As::Float,
         {value("3.402823E38", "3.40282306e+38"), value("-1.5", "-1.5"), value("0.1", "0.100000001"),
          value("1.17549435E-38", "1.17549435e-38")}},
        {"date",
         As::Text,
         {value("'0001-01-01'", "0001-01-01"), value("'9999-12-31'", "9999-12-31"),
          value("'2024-02-29'", "2024-02-29")}},
        {"datetime",
         As::Text,
         {value("'1753-01-01'", "1753-01-01 00:00:00"),
          value("'9999-12-31T23:59:59.000'", "9999-12-31 23:59:59"),
          value("'2024-02-29T12:34:56.997'", "2024-02-29 12:34:56")}},
        {"smalldatetime",
         As::Text,
         {value("'1900-01-01'", "1900-01-01 00:00:00"), value("'2079-06-06 23:59'", "2079-06-06 23:59:00")}},
        {"datetime2(7)",
         As::Text,
         {value("'0001-01-01'", "0001-01-01 00:00:00"),
          value("'9999-12-31 23:59:59.9999999'", "9999-12-31 23:59:59")}},
        {"datetimeoffset(7)",
         As::Text,
         {value("'2024-02-29 12:34:56.1234567 +05:30'", "2024-02-29 07:04:56.1234567"),
          value("'0001-01-01 00:00:00 +00:00'", "0001-01-01 00:00:00.0000000")}},
        {"datetimeoffset(3)",
         As::Text,
         {value("'2024-02-29 23:34:56.789 -02:00'", "2024-03-01 01:34:56.789")}},
        {"time(7)",
         As::Text,
         {value("'23:59:59.9999999'", "23:59:59.999999"), value("'00:00:00'", "00:00:00.000000")}},
        {"time(3)", As::Text, {value("'23:59:59.999'", "23:59:59.999"), value("'00:00:00'", "00:00:00.000")}},
        {"char(20)", As::Text, texts(20)},
        {"char(300)", As::Text, texts(300)},
        {"varchar(50)", As::Text, texts()},
        {"varchar(max)", As::Text, texts() + Values{longText}, true},
        {"nchar(20)", As::Text, nationalTexts(20)},
        {"nvarchar(50)", As::Text, nationalTexts()},
        {"nvarchar(max)", As::Text, nationalTexts() + Values{cake, longNational}, true},
        {"sysname", As::Text, {value("N'name'", "name")}},
        {"text", As::Text, texts() + Values{longText}},
        {"ntext", As::Text, nationalTexts() + Values{cake, longNational}},
        {"xml",
         As::Text,
         {value("N'<a b=\"it''s\">Кофе \\</a>'", "<a b=\"it's\">Кофе \\</a>"),
          value("N'<empty/>'", "<empty/>")},
         true},
        {"binary(8)",
         As::Bytes,
         {value("0x0102030405060708", "0102030405060708"), value("0x", "0000000000000000")}},
        {"binary(300)", As::Bytes, {value("0x0102", QByteArray("0102").leftJustified(600, '0'))}},
        {"varbinary(50)", As::Bytes, bytes()},
        {"varbinary(max)", As::Bytes, bytes() + Values{longBytes}, true},
        {"image", As::Bytes, bytes() + Values{longBytes}},
        {"uniqueidentifier",
         As::Bytes,
         {value("'6F9619FF-8B86-D011-B42D-00C04FC964FF'", "ff19966f868b11d0b42d00c04fc964ff"),
          value("'00000000-0000-0000-0000-000000000000'", QByteArray(32, '0'))}},
        {"sql_variant",
         As::Bytes,
         {value("CAST(5 AS int)", QByteArray("5").toHex()),
          value("CAST(-12.50 AS decimal(9,2))", QByteArray("-12.50").toHex()),
          value("N'Кофе 🎂'", QByteArray("Кофе 🎂").toHex()), value("'it''s'", QByteArray("it's").toHex()),
          value("CAST(0x00FF AS varbinary(4))", "00ff"),
          value("CAST(3.1415 AS money)", QByteArray("3.1415").toHex()),
          value("CAST('2024-02-29' AS date)", QByteArray("2024-02-29").toHex())}},
    };
    return cases;
}

/// What MariaDB is asked for, as hexadecimal text.
QString readAs(As as)
{
    switch (as) {
    case As::Text:
        return QStringLiteral("HEX(CONVERT(CAST(V AS CHAR) USING utf8mb4))");
    case As::Number:
    case As::Float:
    case As::Double:
        return QStringLiteral("HEX(CAST(V + 0 AS CHAR))");
    case As::Bytes:
        return QStringLiteral("HEX(V)");
    }
    return {};
}

/// What MariaDB has, in the form of the expected values.
QByteArray actual(As as, const QByteArray &hexadecimal)
{
    const QByteArray read = QByteArray::fromHex(hexadecimal);
    switch (as) {
    case As::Float:
        return QByteArray::number(static_cast<float>(read.toDouble()), 'g', 9);
    case As::Double:
        return QByteArray::number(read.toDouble(), 'g', 17);
    case As::Bytes:
        return hexadecimal.toLower();
    default:
        return read;
    }
}

class MySQLLoad : public testing::Test
{
protected:
    /// One server serves all tests of the process.
    static void SetUpTestSuite()
    {
        if (MariaDb::isInstalled())
            s_mariaDb = new MariaDb;
    }
    static void TearDownTestSuite() { delete std::exchange(s_mariaDb, nullptr); }

    void SetUp() override
    {
        if (!s_mariaDb)
            GTEST_SKIP() << "MariaDB is not installed: scripts/setup installs it";
        load(QStringLiteral("DROP DATABASE IF EXISTS target; CREATE DATABASE target"), "mysql");
    }

    /// Runs a script; the test fails when MariaDB refuses it.
    static QList<QList<QByteArray>> load(const QString &script, const char *database = "target")
    {
        QString error;
        const auto rows = s_mariaDb->run(script.toUtf8(), QString::fromLatin1(database), &error);
        EXPECT_TRUE(error.isNull()) << error.toStdString() << script.left(300).toStdString();
        return rows;
    }

    static inline MariaDb *s_mariaDb = nullptr;
};

} // namespace

TEST_F(MySQLLoad, BringsEveryValueOfEveryType)
{
    const SampleServerFixture server;
    const auto details = settings(server.port());
    details->setDatabase(QStringLiteral("library"));
    const auto client =
        connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy()));
    for (const TypeCase &type : typeCases()) {
        SCOPED_TRACE(type.type);
        run(*client,
            KNFormat("CREATE TABLE dbo.OneType (Id int NOT NULL PRIMARY KEY, V %s NULL)", type.type));
        QString insert = QStringLiteral("INSERT INTO dbo.OneType (Id, V) VALUES (0, NULL)");
        for (qsizetype i = 0; i < type.values.size(); ++i)
            insert +=
                KNFormat("\nINSERT INTO dbo.OneType (Id, V) VALUES (%lld, %@)", i + 1, type.values[i].sql);
        run(*client, insert);

        const QString script = MSSQLScriptTableAsMySQLQueryLoader::creationQueryForTable(
            QStringLiteral("OneType"), QStringLiteral("dbo"), true, true, true, *details);
        load(type.isWidened ? widened(script) : script);
        const auto loaded = load(KNFormat(
            "SET sql_mode = 'PAD_CHAR_TO_FULL_LENGTH'; SELECT IF(V IS NULL, 'NULL', %@) FROM OneType "
            "ORDER BY Id",
            readAs(type.as)));
        ASSERT_EQ(loaded.size(), type.values.size() + 1);
        EXPECT_EQ(loaded[0][0], "NULL");
        for (qsizetype i = 0; i < type.values.size(); ++i) {
            SCOPED_TRACE(type.values[i].sql.toStdString());
            const QByteArray &wanted = type.values[i].expected;
            const QByteArray found = actual(type.as, loaded[i + 1][0]);
            EXPECT_EQ(found.left(200), wanted.left(200));
            EXPECT_TRUE(found == wanted) << found.size() << " bytes instead of " << wanted.size();
        }
        run(*client, QStringLiteral("DROP TABLE dbo.OneType"));
    }
}

TEST_F(MySQLLoad, RefusesTypesWithoutLimitAsTheyStand)
{
    const SampleServerFixture server;
    const auto details = settings(server.port());
    details->setDatabase(QStringLiteral("library"));
    const auto client =
        connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy()));
    for (const char *type : {"varchar(max)", "nvarchar(max)", "varbinary(max)", "xml"}) {
        run(*client, KNFormat("CREATE TABLE dbo.OneType (Id int NOT NULL, V %s NULL, W %s NULL, X %s NULL)",
                              type, type, type));
        QString error;
        s_mariaDb->run(MSSQLScriptTableAsMySQLQueryLoader::creationQueryForTable(
                           QStringLiteral("OneType"), QStringLiteral("dbo"), true, true, true, *details)
                           .toUtf8(),
                       QStringLiteral("target"), &error);
        EXPECT_TRUE(error.contains(QLatin1String("too large")) || error.contains(QLatin1String("too big")))
            << type << ": " << error.toStdString() << " Documentation and test say that it is refused.";
        run(*client, QStringLiteral("DROP TABLE dbo.OneType"));
    }
}

TEST_F(MySQLLoad, BringsTheRestOfTheKindsOfColumns)
{
    const SampleServerFixture server;
    const auto details = settings(server.port());
    details->setDatabase(QStringLiteral("library"));
    const auto client =
        connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy()));
    run(*client, QStringLiteral("CREATE TYPE dbo.Price FROM decimal(12,3) NOT NULL"));
    run(*client,
        QStringLiteral(
            "CREATE TABLE dbo.Kinds (Id int IDENTITY(5,5) NOT NULL PRIMARY KEY, P dbo.Price, H hierarchyid, "
            "R rowversion, C AS (P * 2), [odd `na'me] int, E image)"));
    run(*client, QStringLiteral("INSERT INTO dbo.Kinds (P, H, [odd `na'me]) VALUES (1.5, '/1/2/', 7)"));
    load(MSSQLScriptTableAsMySQLQueryLoader::creationQueryForTable(
        QStringLiteral("Kinds"), QStringLiteral("dbo"), true, true, true, *details));
    const auto loaded =
        load(QStringLiteral("SELECT Id, P, HEX(H), HEX(R), C, `odd ``na'me`, E IS NULL FROM Kinds"));
    ASSERT_EQ(loaded.size(), 1);
    const QByteArray hierarchy =
        scalar(*client, QStringLiteral("SELECT CAST(H AS varbinary(892)) FROM dbo.Kinds"))
            .bytes()
            .toHex()
            .toUpper();
    const QByteArray version = scalar(*client, QStringLiteral("SELECT CAST(R AS binary(8)) FROM dbo.Kinds"))
                                   .bytes()
                                   .toHex()
                                   .toUpper();
    EXPECT_EQ(loaded[0], (QList<QByteArray>{"5", "1.500", hierarchy, version, "3.000", "7", "1"}));
    EXPECT_FALSE(hierarchy.isEmpty());
}

TEST_F(MySQLLoad, BringsTheFileOfTheExporter)
{
    const SampleServerFixture server;
    const auto details = settings(server.port());
    details->setDatabase(QStringLiteral("library"));
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("library.sql"));
    KNError error;
    DatabaseExporter(path, *details, DatabaseExporter::Form::MySQL)
        .exportWithProgressBlock({}, [&](const KNError &outcome) { error = outcome; });
    ASSERT_FALSE(error) << error.localizedDescription().toStdString();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    load(QString::fromUtf8(file.readAll()));

    const auto client =
        connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy()));
    const auto rows = client->executeQuery(
        QStringLiteral(
            "SELECT LoanId, Isbn, Reader, CONVERT(varchar(19), LentAt, 120), "
            "ISNULL(CONVERT(varchar(19), ReturnedAt, 120), 'NULL') FROM dbo.Loans ORDER BY LoanId"),
        &error);
    const auto loaded = load(QStringLiteral("SELECT * FROM Loans ORDER BY LoanId"));
    ASSERT_EQ(loaded.size(), 60);
    for (const QList<QByteArray> &row : loaded) {
        ASSERT_TRUE(rows->next());
        for (qsizetype i = 0; i < row.size(); ++i)
            EXPECT_EQ(QString::fromUtf8(row[i]), rows->objectForColumnIndex(i).displayText());
    }
    EXPECT_FALSE(rows->next());
}

TEST(MySQLExport, ReportsItsRows)
{
    const SampleServerFixture server;
    const auto details = settings(server.port());
    details->setDatabase(QStringLiteral("library"));
    run(*connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy())),
        QStringLiteral("SELECT id INTO dbo.Many FROM generate_rows(1234)"));
    MSSQLDatabaseScripter scripter(*details);
    KNError error;
    KNScriptExport scripts;
    const QTemporaryDir folder;
    scripts.path = folder.filePath(QStringLiteral("many.sql"));
    scripts.options.language = KNScriptOptions::Language::MySQL;
    scripts.options.data = true;
    for (const KNScriptObject &object : scripter.objects(&error)) {
        if (object.name == QLatin1String("Many"))
            scripts.objects.append(object);
    }
    QList<qint64> reported;
    EXPECT_FALSE(
        scripts.run(scripter, [&](const KNScriptProgress &progress) { reported.append(progress.rows); }, {}));
    EXPECT_EQ(reported, (QList<qint64>{0, 500, 1000, 1234}));
}

TEST_F(MySQLLoad, BringsTheTablesOfADatabase)
{
    const SampleServerFixture server;
    const auto details = settings(server.port());
    details->setDatabase(QStringLiteral("library"));
    load(MSSQLScriptTablesAsMySQLQueryLoader().doActualLoading(*details));
    const auto client =
        connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy()));
    for (const char *table : {"Authors", "Books", "Loans"}) {
        const auto counted = load(KNFormat("SELECT COUNT(*) FROM %s", table));
        ASSERT_EQ(counted.size(), 1) << table;
        EXPECT_EQ(QString::fromLatin1(counted[0][0]),
                  scalar(*client, KNFormat("SELECT COUNT(*) FROM dbo.%s", table)).displayText());
    }
    const auto titles =
        load(QStringLiteral("SELECT HEX(CONVERT(Title USING utf8mb4)) FROM Books ORDER BY Isbn"));
    KNError error;
    const auto books =
        client->executeQuery(QStringLiteral("SELECT Title FROM dbo.Books ORDER BY Isbn"), &error);
    ASSERT_EQ(titles.size(), books->rowCount());
    for (const auto &title : titles) {
        books->next();
        EXPECT_EQ(QByteArray::fromHex(title[0]), books->stringForColumnIndex(0).toUtf8());
    }
}
