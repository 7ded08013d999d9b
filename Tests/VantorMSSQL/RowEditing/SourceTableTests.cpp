#include "RowEditing/MSSQLQueryPatterns.h"
#include "RowEditing/MSSQLSourceTable.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace SourceTableTests {

namespace {

QStringList pathOf(const char *batch)
{
    const MSSQLSourceTable table = MSSQLSourceTable::of(QString::fromUtf8(batch));
    EXPECT_TRUE(table.problem().isNull()) << batch << ": " << table.problem().toStdString();
    return table.path();
}

QString problemOf(const char *batch)
{
    const MSSQLSourceTable table = MSSQLSourceTable::of(QString::fromUtf8(batch));
    EXPECT_TRUE(table.path().isEmpty()) << batch;
    return table.problem();
}

QStringList list(std::initializer_list<const char *> parts)
{
    QStringList texts;
    for (const char *const part : parts)
        texts.append(QString::fromUtf8(part));
    return texts;
}

} // namespace

TEST(SourceTable, IsThatOfAPlainSelect)
{
    EXPECT_EQ(pathOf("SELECT * FROM dbo.Orders"), list({"dbo", "Orders"}));
    EXPECT_EQ(pathOf("select * from [Orders]"), list({"Orders"}));
    EXPECT_EQ(
        pathOf("SELECT TOP (10) PERCENT o.OrderId, [o].Freight FROM sales.[Order Details] AS o WITH (NOLOCK) "
               "WHERE Freight > 1 ORDER BY OrderId DESC;"),
        list({"sales", "Order Details"}));
    EXPECT_EQ(pathOf("SELECT TOP 5 WITH TIES a FROM t ORDER BY a OFFSET 1 ROWS FETCH NEXT 2 ROWS ONLY"),
              list({"t"}));
    EXPECT_EQ(pathOf("USE shop;\nSELECT * FROM Orders -- all\n;"), list({"Orders"}));
    EXPECT_EQ(pathOf("SELECT \"a\"\"b\" FROM [x]]y].\"z\""), list({"x]y", "z"}));
    EXPECT_EQ(pathOf("SELECT * FROM t WHERE id IN (SELECT id FROM u) OPTION (RECOMPILE)"), list({"t"}));
    EXPECT_EQ(pathOf("SELECT t.* FROM t /* FROM x */ WHERE n = 'GROUP BY x; FROM y'"), list({"t"}));
}

TEST(SourceTable, IsNoneWhereRowsAreNotThoseOfOneTable)
{
    const QString joins = QStringLiteral("joins several tables");
    EXPECT_EQ(problemOf("SELECT * FROM a JOIN b ON a.i = b.i"), joins);
    EXPECT_EQ(problemOf("SELECT * FROM a x INNER JOIN b ON a.i = b.i"), joins);
    EXPECT_EQ(problemOf("SELECT * FROM a LEFT OUTER JOIN b ON a.i = b.i"), joins);
    EXPECT_EQ(problemOf("SELECT * FROM a, b"), joins);
    EXPECT_EQ(problemOf("SELECT * FROM a AS x CROSS APPLY f(x.i)"), joins);
    EXPECT_EQ(problemOf("SELECT a FROM t UNION SELECT a FROM u"), QStringLiteral("combines several results"));
    EXPECT_EQ(problemOf("SELECT a FROM t WHERE a > 1 EXCEPT SELECT a FROM u"),
              QStringLiteral("combines several results"));
    EXPECT_EQ(problemOf("SELECT a FROM t GROUP BY a"), QStringLiteral("its rows are grouped"));
    EXPECT_EQ(problemOf("SELECT a FROM t WHERE b = 1 HAVING COUNT(*) > 1"),
              QStringLiteral("its rows are grouped"));
    EXPECT_EQ(problemOf("SELECT DISTINCT a FROM t"), QStringLiteral("DISTINCT makes one row of several"));
    EXPECT_EQ(problemOf("SELECT * FROM (SELECT * FROM t) AS x"), QStringLiteral("it reads no table"));
    EXPECT_EQ(problemOf("SELECT * FROM OPENJSON(@j)"), QStringLiteral("it reads no table"));
    EXPECT_EQ(problemOf("SELECT * FROM @t"), QStringLiteral("it reads no table"));
    EXPECT_EQ(problemOf("SELECT * FROM #t"), QStringLiteral("temporary tables cannot be edited"));
    EXPECT_EQ(problemOf("SELECT * FROM other.dbo.t"), QStringLiteral("its table may be in another database"));
    EXPECT_EQ(problemOf("SELECT * FROM other..t"), QStringLiteral("it reads no table"));
}

TEST(SourceTable, IsNoneWhereColumnsAreNotThoseOfTheTable)
{
    const QString problem = QStringLiteral("its columns have aliases or expressions");
    EXPECT_EQ(problemOf("SELECT CustomerId AS OrderId FROM Orders"), problem);
    EXPECT_EQ(problemOf("SELECT CustomerId OrderId FROM Orders"), problem);
    EXPECT_EQ(problemOf("SELECT OrderId = CustomerId FROM Orders"), problem);
    EXPECT_EQ(problemOf("SELECT Freight + 1 FROM Orders"), problem);
    EXPECT_EQ(problemOf("SELECT *, (SELECT MAX(i) FROM u) FROM Orders"), problem);
    EXPECT_EQ(problemOf("SELECT a INTO #x FROM t"), problem);
}

TEST(SourceTable, IsNoneInABatchOfSeveralStatements)
{
    const QString problem = QStringLiteral("the batch is not a single SELECT");
    EXPECT_EQ(problemOf("WITH c AS (SELECT * FROM t) SELECT * FROM c"), problem);
    EXPECT_EQ(problemOf("EXEC p"), problem);
    EXPECT_EQ(problemOf(""), problem);
    EXPECT_EQ(problemOf("SELECT * FROM t; SELECT * FROM u"), problem);
    EXPECT_EQ(problemOf("SELECT * FROM t WHERE a = 1 UPDATE t SET a = 2"), problem);
    EXPECT_EQ(problemOf("DECLARE @i int SELECT * FROM t"), problem);
    EXPECT_EQ(problemOf("SELECT * FROM t FOR XML AUTO"),
              QStringLiteral("it does not plainly read one table"));
}

TEST(SourceTable, OfBrokenTextIsNone)
{
    for (const char *const batch :
         {"SELECT", "SELECT * FROM", "SELECT TOP (", "SELECT * FROM t WITH (", "SELECT * FROM t WHERE (a = 1",
          "USE", "SELECT * FROM [t", "'", "SELECT ,"})
        MSSQLSourceTable::of(QString::fromUtf8(batch)); // ends, whatever it finds
    EXPECT_EQ(problemOf("SELECT * FROM"), QStringLiteral("it reads no table"));
}

TEST(QueryPatterns, FindTheFirstTable)
{
    using namespace MSSQLQueryPatterns;
    EXPECT_EQ(firstTable(QStringLiteral("SELECT * FROM dbo.Orders WHERE 1 = 1")),
              QStringLiteral("dbo.Orders"));
    EXPECT_EQ(firstTable(QStringLiteral("select *\r\nfrom\r\n[Orders];")), QStringLiteral("[Orders]"));
    EXPECT_EQ(firstTable(QStringLiteral("SELECT 1 FROM a, b WHERE x")), QStringLiteral("a, b"));
    EXPECT_TRUE(firstTable(QStringLiteral("SELECT 1")).isNull());
    EXPECT_TRUE(hasJoin(QStringLiteral("SELECT * FROM a\njoin\tb ON 1 = 1")));
    EXPECT_FALSE(hasJoin(QStringLiteral("SELECT * FROM joint")));
}

TEST(QueryPatterns, SplitAtTheFirstDotAndUnbracket)
{
    using namespace MSSQLQueryPatterns;
    const auto both = split(QStringLiteral("[dbo].[Orders]"));
    ASSERT_TRUE(both);
    EXPECT_EQ(both->schema, QStringLiteral("dbo"));
    EXPECT_EQ(both->name, QStringLiteral("Orders"));
    const auto alone = split(QStringLiteral("[Orders]"));
    ASSERT_TRUE(alone);
    EXPECT_TRUE(alone->schema.isNull());
    EXPECT_EQ(alone->name, QStringLiteral("Orders"));
    const auto three = split(QStringLiteral("a.b.c"));
    ASSERT_TRUE(three);
    EXPECT_EQ(three->schema, QStringLiteral("a"));
    EXPECT_EQ(three->name, QStringLiteral("b.c"));
    EXPECT_FALSE(split(QStringLiteral("(")));
}

} // namespace SourceTableTests
