#include "Foundation/KNPropertyList.h"
#include "Support/PrintQt.h"

#include <QSet>

#include <gtest/gtest.h>

namespace {

QStringList words(const char *file)
{
    KNError error;
    QStringList list = KNPropertyList::stringList(
        QStringLiteral(VANTOR_MSSQL_RESOURCES "/") + QString::fromLatin1(file), &error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    return list;
}

const QStringList &keywords()
{
    static const QStringList list = words("MSSQLKeywords.plist");
    return list;
}

const QStringList &functions()
{
    static const QStringList list = words("MSSQLFunctions.plist");
    return list;
}

QStringList missing(const QStringList &list, std::initializer_list<const char *> expected)
{
    QStringList absent;
    for (const char *word : expected) {
        if (!list.contains(QString::fromLatin1(word)))
            absent += QString::fromLatin1(word);
    }
    return absent;
}

void expectEachOnceAndPlain(const QStringList &list)
{
    QSet<QString> seen;
    for (const QString &word : list) {
        EXPECT_FALSE(word.isEmpty());
        EXPECT_EQ(word, word.simplified());
        EXPECT_FALSE(seen.contains(word.toUpper())) << word.toStdString() << " occurs twice";
        seen.insert(word.toUpper());
    }
}

} // namespace

TEST(MSSQLKeywords, HoldEachWordOnceInUpperCase)
{
    expectEachOnceAndPlain(keywords());
    for (const QString &word : keywords())
        EXPECT_EQ(word, word.toUpper());
}

TEST(MSSQLKeywords, CoverEveryVersionOfTheServer)
{
    EXPECT_EQ(missing(keywords(), {"SELECT", "FROM", "WHERE", "COMPUTE", "DUMMY", "TSEQUAL", "READTEXT"}),
              QStringList())
        << "since 2000";
    EXPECT_EQ(missing(keywords(), {"PIVOT", "UNPIVOT", "REVERT", "TABLESAMPLE", "EXTERNAL"}), QStringList())
        << "since 2005";
    EXPECT_EQ(missing(keywords(), {"MERGE"}), QStringList()) << "since 2008";
    EXPECT_EQ(missing(keywords(), {"TRY_CONVERT", "SEMANTICKEYPHRASETABLE", "WITHIN"}), QStringList())
        << "since 2012";
}

TEST(MSSQLKeywords, HoldOdbcAndFutureWords)
{
    EXPECT_EQ(missing(keywords(), {"END-EXEC", "SQLWARNING", "TIMEZONE_HOUR", "ZONE", "FORTRAN"}),
              QStringList());
    EXPECT_EQ(missing(keywords(), {"ASENSITIVE", "XMLVALIDATE", "WIDTH_BUCKET", "LIKE_REGEX", "ROLLUP"}),
              QStringList());
}

TEST(MSSQLKeywords, LeaveCommonNamesAlone)
{
    for (const char *name : {"NAME", "ID", "ORDERS", "DBO", "SYS", "STATUS"})
        EXPECT_FALSE(keywords().contains(QString::fromLatin1(name))) << name;
}

TEST(MSSQLReservedWords, AreThoseOfTheDocumentation)
{
    const QStringList reserved = words("MSSQLReservedWords.plist");
    expectEachOnceAndPlain(reserved);
    EXPECT_EQ(missing(reserved, {"ADD", "EXTERNAL", "KEY", "MERGE", "PLAN", "PUBLIC", "RULE", "TRY_CONVERT",
                                 "USER", "WITHIN", "WRITETEXT", "SEMANTICSIMILARITYDETAILSTABLE"}),
              QStringList());
    for (const char *word :
         {"DAY", "NAME", "TYPE", "STATUS", "VALUE", "DATE", "ZONE", "ROLE", "WIDTH_BUCKET"})
        EXPECT_FALSE(reserved.contains(QString::fromLatin1(word)))
            << word << " is reserved for ODBC or later only";
    for (const QString &word : reserved)
        EXPECT_TRUE(keywords().contains(word)) << word.toStdString();
}

TEST(MSSQLFunctions, HoldEachNameOnce)
{
    expectEachOnceAndPlain(functions());
}

TEST(MSSQLFunctions, CoverEveryKind)
{
    EXPECT_EQ(missing(functions(),
                      {"COUNT",      "STRING_AGG", "ROW_NUMBER",  "LAG",       "CAST",
                       "HASHBYTES",  "DATEADD",    "ISJSON",      "IIF",       "ABS",
                       "OBJECT_ID",  "OPENJSON",   "SUSER_SNAME", "SUBSTRING", "NEWID",
                       "@@ROWCOUNT", "@@VERSION",  "$PARTITION",  "TEXTPTR",   "fn_listextendedproperty"}),
              QStringList());
}

TEST(MSSQLFunctions, CoverTheNewestVersionOfTheServer)
{
    EXPECT_EQ(missing(functions(), {"GENERATE_SERIES", "DATE_BUCKET", "DATETRUNC", "GREATEST", "JSON_ARRAY",
                                    "BIT_COUNT", "APPROX_PERCENTILE_CONT"}),
              QStringList());
}

TEST(MSSQLDataTypes, AreThoseOfEveryVersionUpTo2022)
{
    const QStringList types = words("MSSQLDataTypes.plist");
    expectEachOnceAndPlain(types);
    const QStringList expected =
        QStringLiteral("BIGINT BINARY BIT CHAR CHARACTER DATE DATETIME DATETIME2 DATETIMEOFFSET DEC DECIMAL "
                       "FLOAT GEOGRAPHY GEOMETRY HIERARCHYID IMAGE INT INTEGER MONEY NCHAR NTEXT NUMERIC "
                       "NVARCHAR REAL ROWVERSION SMALLDATETIME SMALLINT SMALLMONEY SQL_VARIANT SYSNAME TEXT "
                       "TIME TIMESTAMP TINYINT UNIQUEIDENTIFIER VARBINARY VARCHAR XML")
            .split(QLatin1Char(' '));
    EXPECT_EQ(types, expected) << "json is a type from 2025 on";
}
