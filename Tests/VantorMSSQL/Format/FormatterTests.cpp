#include "SQL/Format/KNSQLFormatter.h"

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

QString format(const char *utf8, const KNSQLFormatStyle &style = {.width = 40})
{
    const QString text = QString::fromUtf8(utf8);
    return KNSQLFormatter::formatted(text, {0, text.size()}, MSSQLDatabaseConnectionDetails(), style);
}

QString lines(std::initializer_list<const char *> list)
{
    QStringList texts;
    for (const char *const line : list)
        texts.append(QString::fromUtf8(line));
    return texts.join(u'\n');
}

} // namespace

TEST(Formatter, PutsClausesOnLines)
{
    EXPECT_EQ(format("select a,b from t where a=1 order by b desc"),
              lines({"SELECT a, b", "FROM t", "WHERE a = 1", "ORDER BY b DESC"}));
    EXPECT_EQ(
        format(
            "SELECT a FROM t LEFT OUTER JOIN u ON u.a=t.a CROSS APPLY f(t.a) x GROUP BY a HAVING COUNT(*)>1"),
        lines({"SELECT a", "FROM t", "LEFT OUTER JOIN u ON u.a = t.a", "CROSS APPLY f(t.a) x", "GROUP BY a",
               "HAVING COUNT(*) > 1"}));
}

TEST(Formatter, BreaksALongListIntoItems)
{
    EXPECT_EQ(format("SELECT DISTINCT TOP (10) FirstColumn, SecondColumn, ThirdColumn FROM t"),
              lines({"SELECT DISTINCT TOP (10)", "    FirstColumn,", "    SecondColumn,", "    ThirdColumn",
                     "FROM t"}));
    EXPECT_EQ(format("SELECT FirstColumn, SecondColumn, ThirdColumn FROM t",
                     {.hasLeadingCommas = true, .indent = 2, .width = 40}),
              lines({"SELECT", "  FirstColumn", "  , SecondColumn", "  , ThirdColumn", "FROM t"}));
}

TEST(Formatter, BreaksLongConditionsAtTheirConnectives)
{
    EXPECT_EQ(format("SELECT 1 FROM t WHERE a BETWEEN 1 AND 2 AND bbbbbbbbbb = 3 OR (c = 4 AND d = 5)"),
              lines({"SELECT 1", "FROM t", "WHERE a BETWEEN 1 AND 2", "    AND bbbbbbbbbb = 3",
                     "    OR (c = 4 AND d = 5)"}));
}

TEST(Formatter, IndentsLongSubqueries)
{
    EXPECT_EQ(format("SELECT a FROM (SELECT a, b FROM LongTableName WHERE b = 1) AS x"),
              lines({"SELECT a", "FROM (", "    SELECT a, b", "    FROM LongTableName", "    WHERE b = 1",
                     ") AS x"}));
    EXPECT_EQ(format("SELECT a FROM t WHERE a IN (SELECT 1)"),
              lines({"SELECT a", "FROM t", "WHERE a IN (SELECT 1)"}));
}

TEST(Formatter, BreaksLongCaseExpressions)
{
    EXPECT_EQ(
        format("SELECT a, CASE WHEN a = 1 THEN 'one' WHEN a = 2 THEN 'two' ELSE 'many' END AS b FROM t"),
        lines({"SELECT", "    a,", "    CASE", "        WHEN a = 1 THEN 'one'",
               "        WHEN a = 2 THEN 'two'", "        ELSE 'many'", "    END AS b", "FROM t"}));
}

TEST(Formatter, IndentsBlocksAndConditions)
{
    EXPECT_EQ(format("IF @a=1 BEGIN SELECT 1; SELECT 2 END ELSE IF @a=2 PRINT 'x' ELSE PRINT 'y' SELECT 3"),
              lines({"IF @a = 1", "BEGIN", "    SELECT 1;", "    SELECT 2", "END", "ELSE IF @a = 2",
                     "    PRINT 'x'", "ELSE", "    PRINT 'y'", "SELECT 3"}));
    EXPECT_EQ(format("begin try begin tran delete t commit end try begin catch rollback end catch"),
              lines({"BEGIN TRY", "    BEGIN TRAN", "    DELETE t", "    COMMIT", "END TRY", "BEGIN CATCH",
                     "    ROLLBACK", "END CATCH"}));
}

TEST(Formatter, LaysOutDefinitions)
{
    EXPECT_EQ(format("create table dbo.T (Id int not null primary key, Name nvarchar(50) null)"),
              lines({"CREATE TABLE dbo.T (", "    Id int NOT NULL PRIMARY KEY,", "    Name nvarchar(50) NULL",
                     ")"}));
    EXPECT_EQ(format("CREATE PROC p @a int OUTPUT AS BEGIN SET @a = 1 END"),
              lines({"CREATE PROC p @a int OUTPUT", "AS", "BEGIN", "    SET @a = 1", "END"}));
    EXPECT_EQ(format("CREATE VIEW v AS SELECT 1 AS a"), lines({"CREATE VIEW v", "AS", "SELECT 1 AS a"}));
}

TEST(Formatter, LaysOutChanges)
{
    EXPECT_EQ(format("insert into t (a,b) values (1,2),(3,4)"),
              lines({"INSERT INTO t (a, b)", "VALUES (1, 2), (3, 4)"}));
    EXPECT_EQ(format("update t set a=1,b=2 OUTPUT inserted.a from t where c=3"),
              lines({"UPDATE t", "SET a = 1, b = 2", "OUTPUT inserted.a", "FROM t", "WHERE c = 3"}));
    EXPECT_EQ(format("delete from t where a=1"), lines({"DELETE FROM t", "WHERE a = 1"}));
    EXPECT_EQ(format("EXEC p @a = 1, @b = @c OUTPUT"), QStringLiteral("EXEC p @a = 1, @b = @c OUTPUT"));
}

TEST(Formatter, KeepsSeparatorsAndTheirCountsOnLinesOfTheirOwn)
{
    EXPECT_EQ(format("select 1\ngo 5 -- often\nselect 2   \n  GO\n"),
              lines({"SELECT 1", "go 5 -- often", "SELECT 2", "  GO", ""}));
    // A column with the name of the separator must not come to stand alone.
    EXPECT_EQ(format("SELECT LongerColumnName, go, AnotherColumnName FROM t").count(QStringLiteral("\ngo")),
              0);
}

TEST(Formatter, KeepsCommentsWithTheirTokens)
{
    EXPECT_EQ(format("-- head\nselect a, -- first\n b /* second */ from t\n-- tail"),
              lines({"-- head", "SELECT", "    a, -- first", "    b /* second */", "FROM t", "-- tail"}));
    EXPECT_EQ(format("begin\n-- inside\nselect 1\nend"),
              lines({"BEGIN", "    -- inside", "    SELECT 1", "END"}));
}

TEST(Formatter, KeepsOneBlankLineBetweenStatements)
{
    EXPECT_EQ(format("select 1\n\n\n\nselect 2 select 3"), lines({"SELECT 1", "", "SELECT 2", "SELECT 3"}));
}

TEST(Formatter, ChangesTheCaseOfReservedWordsOnly)
{
    const char *const text = "Select [select], t.Order, Name, Count(*), 'from' From T";
    EXPECT_EQ(format(text, {}), lines({"SELECT [select], t.Order, Name, Count(*), 'from'", "FROM T"}));
    EXPECT_EQ(format(text, {.keywordCase = KNSQLFormatStyle::KeywordCase::Lower}),
              lines({"select [select], t.Order, Name, Count(*), 'from'", "from T"}));
    EXPECT_EQ(format(text, {.keywordCase = KNSQLFormatStyle::KeywordCase::AsTyped}),
              lines({"Select [select], t.Order, Name, Count(*), 'from'", "From T"}));
}

TEST(Formatter, KeepsLineEndsOfTheText)
{
    EXPECT_EQ(format("select 1\r\nfrom t\r\n"), QStringLiteral("SELECT 1\r\nFROM t\r\n"));
}

TEST(Formatter, KeepsOperatorsOfOldOuterJoins)
{
    EXPECT_EQ(format("select 1 from a,b where a.x *= b.x and a.y =* b.y").count(QStringLiteral("= *")), 0);
}

TEST(Formatter, FormatsAPartAtItsIndentation)
{
    const QString text = QStringLiteral("BEGIN\n    select 1 from t\nEND");
    const KNRange part{text.indexOf(QStringLiteral("select")), 15};
    EXPECT_EQ(KNSQLFormatter::formatted(text, part, MSSQLDatabaseConnectionDetails(), {}),
              QStringLiteral("SELECT 1\n    FROM t"));
}

TEST(Formatter, LeavesAPartInsideOfAStringAsItIs)
{
    const QString text = QStringLiteral("SELECT 'select  1  from  t'");
    EXPECT_EQ(KNSQLFormatter::formatted(text, {8, 17}, MSSQLDatabaseConnectionDetails(), {}),
              text.mid(8, 17));
}

TEST(Formatter, KeepsBrokenTexts)
{
    EXPECT_EQ(format("select 'open from t"), QStringLiteral("SELECT 'open from t"));
    EXPECT_EQ(format("select (1, ((2 from"), lines({"SELECT (1, ((2", "FROM"}));
    EXPECT_EQ(format(") end end ) select"), lines({")", "END", "END)", "SELECT"}));
    EXPECT_EQ(format(""), QString());
    EXPECT_EQ(format(" \n "), QStringLiteral(" \n "));
}
