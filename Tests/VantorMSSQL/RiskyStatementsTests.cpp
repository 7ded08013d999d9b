#include "Implementations/MSSQLRiskyStatements.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

namespace {

QStringList risky(const char *batch)
{
    return MSSQLRiskyStatements(QString::fromUtf8(batch));
}

} // namespace

TEST(RiskyStatements, AreChangesOfAllRowsAndDroppedOrEmptiedObjects)
{
    for (const char *const batch :
         {"DELETE FROM dbo.Orders", "delete Orders", "UPDATE Orders SET Total = 0", "DROP TABLE Orders",
          "drop database shop", "DROP PROCEDURE IF EXISTS p", "TRUNCATE TABLE Orders",
          "DELETE TOP (10) FROM Orders", "UPDATE TOP (5) PERCENT Orders SET a = 1",
          "UPDATE o SET a = 1 FROM Orders o JOIN Lines l ON l.o = o.id",
          "DELETE o FROM Orders AS o INNER MERGE JOIN Lines AS l ON l.o = o.id", "DROP TABLE #t, Orders",
          "UPDATE Orders SET a = CASE WHEN b = 1 THEN 2 ELSE 3 END",
          "UPDATE Orders SET a = (SELECT 1 WHERE 1 = 1)", "ALTER TABLE Orders DROP COLUMN Total",
          "DELETE FROM [dbo].[where]", "DELETE FROM t OUTPUT deleted.id"})
        EXPECT_EQ(risky(batch).size(), 1) << batch;
}

TEST(RiskyStatements, AreNoneWithAWhereOfTheirOwn)
{
    for (const char *const batch :
         {"DELETE FROM Orders WHERE id = 1", "UPDATE Orders SET a = 1 WHERE id = 1",
          "UPDATE o SET a = 1 FROM Orders o JOIN Lines l ON l.o = o.id WHERE l.id = 3",
          "UPDATE Orders WITH (TABLOCK) SET a = CASE WHEN b = 1 THEN 2 ELSE 3 END WHERE id = 1",
          "DELETE TOP (10) FROM Orders WHERE id > 1", "DELETE FROM Orders WHERE CURRENT OF c",
          "WITH d AS (SELECT *, ROW_NUMBER() OVER (ORDER BY id) AS n FROM t) DELETE FROM d WHERE n > 1",
          "DELETE FROM t OUTPUT deleted.id INTO @ids WHERE id IN (SELECT id FROM u)"})
        EXPECT_EQ(risky(batch), QStringList()) << batch;
}

TEST(RiskyStatements, AreNotFoundInTextsThatDoNotRun)
{
    for (const char *const batch :
         {"SELECT 'DELETE FROM t'", "-- DELETE FROM t\nSELECT 1",
          "/* DROP TABLE t /* nested */ TRUNCATE TABLE t */",
          "SELECT [DROP TABLE t], \"DELETE FROM t\" FROM x", "CREATE PROCEDURE p AS DELETE FROM t",
          "CREATE OR ALTER PROC p AS BEGIN TRUNCATE TABLE t END",
          "ALTER TRIGGER g ON t AFTER DELETE AS DROP TABLE u",
          "CREATE FUNCTION f() RETURNS int AS BEGIN DELETE FROM t RETURN 1 END"})
        EXPECT_EQ(risky(batch), QStringList()) << batch;
}

TEST(RiskyStatements, AreNotOtherUsesOfTheSameWords)
{
    for (const char *const batch :
         {"GRANT SELECT, UPDATE, DELETE ON t TO alice", "REVOKE DELETE ON t FROM alice",
          "UPDATE STATISTICS t", "DENY UPDATE (a) ON t TO alice",
          "ALTER TABLE t ADD CONSTRAINT f FOREIGN KEY (a) REFERENCES u (a) ON DELETE CASCADE ON UPDATE "
          "CASCADE",
          "ALTER TABLE t DROP CONSTRAINT f", "ALTER ROLE r DROP MEMBER alice",
          "DECLARE c CURSOR FOR SELECT a FROM t FOR UPDATE OF a",
          "CREATE INDEX i ON t (a) WITH (DROP_EXISTING = ON)",
          "MERGE t USING s ON t.id = s.id WHEN MATCHED THEN UPDATE SET a = s.a "
          "WHEN NOT MATCHED BY SOURCE THEN DELETE;",
          "INSERT INTO t SELECT * FROM u", "SELECT deleted FROM t"})
        EXPECT_EQ(risky(batch), QStringList()) << batch;
}

TEST(RiskyStatements, AreNotChangesOfTemporaryTables)
{
    for (const char *const batch :
         {"DROP TABLE #t", "DROP TABLE IF EXISTS #t", "TRUNCATE TABLE #t", "DELETE FROM #t", "DELETE @rows",
          "UPDATE ##t SET a = 1", "DELETE TOP (3) FROM #t"})
        EXPECT_EQ(risky(batch), QStringList()) << batch;
}

TEST(RiskyStatements, AreFoundAmongOthersWithoutSemicolons)
{
    EXPECT_EQ(risky("SET NOCOUNT ON\n"
                    "DELETE FROM a\n"
                    "IF EXISTS (SELECT * FROM t WHERE a = 1)\n"
                    "BEGIN\n"
                    "  UPDATE t SET a = 2 -- all of them\n"
                    "  SELECT * FROM t WHERE a = 3\n"
                    "  WHILE 1 = 1 BEGIN DELETE   FROM\tu END\n"
                    "END\n"
                    "ELSE DROP TABLE v\n"
                    "ALTER TABLE w ADD b int DROP TABLE x\n"
                    "MERGE t USING s ON 1 = 1 WHEN MATCHED THEN DELETE;\n"
                    "WITH c AS (SELECT * FROM t WHERE a = 1) DELETE FROM c\n"
                    "TRUNCATE TABLE y"),
              (QStringList{QStringLiteral("DELETE FROM a"), QStringLiteral("UPDATE t SET a = 2"),
                           QStringLiteral("DELETE FROM u"), QStringLiteral("DROP TABLE v"),
                           QStringLiteral("DROP TABLE x"), QStringLiteral("DELETE FROM c"),
                           QStringLiteral("TRUNCATE TABLE y")}));
    EXPECT_EQ(risky("DROP TABLE IF EXISTS dbo.Orders"),
              QStringList{QStringLiteral("DROP TABLE IF EXISTS dbo.Orders")});
    EXPECT_EQ(risky("ALTER TABLE t DROP COLUMN a; DELETE FROM u WHERE b = 1"),
              QStringList{QStringLiteral("ALTER TABLE t DROP COLUMN a")});
}

TEST(RiskyStatements, AreShownInALineOfBoundedLength)
{
    const QStringList found =
        MSSQLRiskyStatements(QStringLiteral("DELETE\nFROM [") + QString(5000, u'x') + QStringLiteral("]"));
    ASSERT_EQ(found.size(), 1);
    EXPECT_TRUE(found.first().startsWith(QStringLiteral("DELETE FROM [xxx")));
    EXPECT_LE(found.first().size(), 101);
    EXPECT_TRUE(found.first().endsWith(QChar(0x2026)));
}

TEST(RiskyStatements, AreFoundInLinearTimeInAnyText)
{
    QElapsedTimer timer;
    timer.start();
    for (const char *const part :
         {"DELETE ", "ALTER DROP ", "(", "CASE ", "CASE ( ", "MERGE ", "GRANT ", ") END "})
        MSSQLRiskyStatements(QString::fromLatin1(part).repeated(100'000));
    EXPECT_LT(timer.elapsed(), 20'000);
    EXPECT_EQ(risky("DELETE"), QStringList{QStringLiteral("DELETE")}); // cut off anywhere
    for (const char *const cut :
         {"DROP", "TRUNCATE", "UPDATE", "ALTER", "MERGE", "GRANT", "CREATE OR", "WITH", "DELETE TOP ("})
        risky(cut);
}
