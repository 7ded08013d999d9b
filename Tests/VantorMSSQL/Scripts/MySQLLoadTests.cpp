#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"
#include "Scripts/MSSQLScriptTablesAsMySQLQueryLoader.h"
#include "VantorMSSQL/Scripts/MariaDb.h"
#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;

namespace {

/// How a column of MariaDB is read, and what a value of SQL Server must then read as.
enum class As {
    Text,         ///< as text
    Number,       ///< as the number's text
    Float,        ///< as a number of single precision
    Double,       ///< as one of double precision
    Bytes,        ///< byte for byte
    Guid,         ///< as the sixteen bytes that SQL Server keeps
    VariantBytes, ///< text as its bytes, bytes as they are
    Seconds,      ///< as a date without fractions of a second
    Microseconds, ///< as a time with six digits
};

struct TypeCase
{
    const char *type;
    As as;
    QStringList values;     ///< as SQL Server's literals, beside NULL
    bool isWidened = false; ///< whether the script is edited before it is loaded, as the documentation tells
};

/// What the documentation advises for types without a limit.
QString widened(QString script)
{
    return script.replace(QLatin1String("nvarchar(21844)"), QLatin1String("longtext"))
        .replace(QLatin1String("varchar(21844)"), QLatin1String("longtext"))
        .replace(QLatin1String("varbinary(21844)"), QLatin1String("longblob"));
}

QStringList literals(std::initializer_list<const char *> utf8)
{
    QStringList texts;
    for (const char *text : utf8)
        texts.append(QString::fromUtf8(text));
    return texts;
}

/// Every type with the values that are hard to write. What MySQL refuses or loses is not among them:
/// docs/mysql-translation.md tells those.
const QList<TypeCase> &typeCases()
{
    static const std::initializer_list<const char *> text = {"''",
                                                             "'it''s'",
                                                             "'\\ \"and\" \\n %'",
                                                             "'a' + CHAR(0) + 'b'",
                                                             "'line' + CHAR(13) + CHAR(10) + CHAR(9)",
                                                             "'null'",
                                                             "' blanks '"};
    static const QStringList texts = literals(text);
    static const QStringList national = texts + literals({"N'größe Кофе 花子'"});
    static const QStringList bytes = literals({"0x", "0x00", "0x27005C0A", "0xFFFEFD"});
    static const QList<TypeCase> cases{
        {"bigint", As::Number, literals({"9223372036854775807", "-9223372036854775808", "0"})},
        {"int", As::Number, literals({"2147483647", "-2147483648"})},
        {"smallint", As::Number, literals({"32767", "-32768"})},
        {"tinyint", As::Number, literals({"0", "255"})},
        {"bit", As::Number, literals({"0", "1"})},
        {"decimal(38,10)", As::Number,
         literals({"1234567890123456789012345678.0123456789", "-0.0000000001", "0"})},
        {"decimal(38,0)", As::Number, literals({"99999999999999999999999999999999999999"})},
        {"money", As::Number, literals({"922337203685477.5807", "-922337203685477.5808"})},
        {"smallmoney", As::Float, literals({"12.34", "-0.0001", "99.9999"})},
        {"float", As::Double, literals({"1.7976931348623157E+308", "-2.2250738585072014E-308", "0.1", "0"})},
        {"real", As::Float, literals({"3.402823E38", "-1.5", "0.1", "1.17549435E-38"})},
        {"date", As::Text, literals({"'0001-01-01'", "'9999-12-31'", "'2024-02-29'"})},
        {"datetime", As::Seconds,
         literals({"'1753-01-01'", "'9999-12-31T23:59:59.000'", "'2024-02-29T12:34:56.997'"})},
        {"smalldatetime", As::Seconds, literals({"'1900-01-01'", "'2079-06-06 23:59'"})},
        {"datetime2(7)", As::Seconds, literals({"'0001-01-01'", "'9999-12-31 23:59:59.9999999'"})},
        {"datetimeoffset(7)", As::Text,
         literals({"'2024-02-29 12:34:56.1234567 +05:30'", "'0001-01-01 00:00:00 +00:00'"})},
        {"time(7)", As::Microseconds, literals({"'23:59:59.9999999'", "'00:00:00'"})},
        {"time(3)", As::Text, literals({"'23:59:59.999'", "'00:00:00'"})},
        {"char(20)", As::Text, texts},
        {"char(300)", As::Text, texts},
        {"varchar(50)", As::Text, texts},
        {"varchar(max)", As::Text,
         texts + literals({"REPLICATE(CAST('0123456789' AS varchar(max)), 300000)"}), true},
        {"nchar(20)", As::Text, national},
        {"nvarchar(50)", As::Text, national},
        {"nvarchar(max)", As::Text,
         national + literals({"N'cake 🎂'", "REPLICATE(CAST(N'🎂' AS nvarchar(max)), 500000)"}), true},
        {"sysname", As::Text, literals({"N'name'"})},
        {"text", As::Text, texts + literals({"REPLICATE(CAST('0123456789' AS varchar(max)), 300000)"})},
        {"ntext", As::Text,
         national + literals({"N'cake 🎂'", "REPLICATE(CAST(N'🎂' AS nvarchar(max)), 500000)"})},
        {"xml", As::Text, literals({"N'<a b=\"it''s\">Кофе \\</a>'", "N'<empty/>'"}), true},
        {"binary(8)", As::Bytes, literals({"0x0102030405060708", "0x"})},
        {"binary(300)", As::Bytes, literals({"0x0102"})},
        {"varbinary(50)", As::Bytes, bytes},
        {"varbinary(max)", As::Bytes,
         bytes + literals({"CAST(REPLICATE(CAST('0123456789' AS varchar(max)), 300000) AS varbinary(max))"}),
         true},
        {"image", As::Bytes,
         bytes + literals({"CAST(REPLICATE(CAST('0123456789' AS varchar(max)), 300000) AS varbinary(max))"})},
        {"uniqueidentifier", As::Guid,
         literals({"'6F9619FF-8B86-D011-B42D-00C04FC964FF'", "'00000000-0000-0000-0000-000000000000'"})},
        {"sql_variant", As::VariantBytes,
         literals(
             {"CAST(5 AS int)", "CAST(12.50 AS decimal(9,2))", "N'Кофе 🎂'", "CAST(0x00FF AS varbinary(4))"})},
    };
    return cases;
}

QByteArray guidBytes(const QString &text)
{
    const QByteArray digits = QByteArray::fromHex(QString(text).remove(QLatin1Char('-')).toLatin1());
    QByteArray bytes;
    for (const int place : {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15})
        bytes.append(digits.at(place));
    return bytes;
}

/// What MariaDB is asked for, as hexadecimal text.
QString readAs(As as)
{
    switch (as) {
    case As::Text:
    case As::Seconds:
    case As::Microseconds:
        return QStringLiteral("HEX(CONVERT(CAST(V AS CHAR) USING utf8mb4))");
    case As::Number:
    case As::Float:
    case As::Double:
        return QStringLiteral("HEX(CAST(V + 0 AS CHAR))");
    case As::Bytes:
    case As::Guid:
    case As::VariantBytes:
        return QStringLiteral("HEX(V)");
    }
    return {};
}

/// What MariaDB must have for a value of SQL Server, in a form that is as exact as the type.
QByteArray expected(As as, const KNValue &source)
{
    const QByteArray shown = source.displayText().toUtf8();
    switch (as) {
    case As::Text:
    case As::Number:
        return shown;
    case As::Float:
        return QByteArray::number(static_cast<float>(source.toDouble()), 'g', 9);
    case As::Double:
        return QByteArray::number(source.toDouble(), 'g', 17);
    case As::Bytes:
        return source.bytes().toHex();
    case As::Guid:
        return guidBytes(source.text()).toHex();
    case As::VariantBytes:
        return source.kind() == KNValue::Kind::Bytes ? source.bytes().toHex() : shown.toHex();
    case As::Seconds:
        return shown.left(19);
    case As::Microseconds:
        return shown.left(15);
    }
    return {};
}

/// What it has, in the same form.
QByteArray actual(As as, const QByteArray &hexadecimal)
{
    const QByteArray read = QByteArray::fromHex(hexadecimal);
    switch (as) {
    case As::Float:
        return QByteArray::number(static_cast<float>(read.toDouble()), 'g', 9);
    case As::Double:
        return QByteArray::number(read.toDouble(), 'g', 17);
    case As::Bytes:
    case As::Guid:
    case As::VariantBytes:
        return read.toHex();
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
            insert += KNFormat("\nINSERT INTO dbo.OneType (Id, V) VALUES (%lld, %@)", i + 1, type.values[i]);
        run(*client, insert);

        const QString script = MSSQLScriptTableAsMySQLQueryLoader::creationQueryForTable(
            QStringLiteral("OneType"), QStringLiteral("dbo"), true, true, true, *details);
        load(type.isWidened ? widened(script) : script);
        const auto loaded = load(KNFormat(
            "SET sql_mode = 'PAD_CHAR_TO_FULL_LENGTH'; SELECT IF(V IS NULL, 'NULL', %@) FROM OneType "
            "ORDER BY Id",
            readAs(type.as)));
        KNError error;
        const auto source =
            client->executeQuery(QStringLiteral("SELECT V FROM dbo.OneType ORDER BY Id"), &error);
        ASSERT_TRUE(source) << error.localizedDescription().toStdString();
        ASSERT_EQ(source->rowCount(), type.values.size() + 1);
        ASSERT_EQ(loaded.size(), source->rowCount());
        for (qsizetype i = 0; source->next(); ++i) {
            SCOPED_TRACE(i);
            const KNValue value = source->objectForColumnIndex(0);
            if (value.isNull()) {
                EXPECT_EQ(loaded[i][0], "NULL");
                continue;
            }
            const QByteArray wanted = expected(type.as, value);
            const QByteArray found = actual(type.as, loaded[i][0]);
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
