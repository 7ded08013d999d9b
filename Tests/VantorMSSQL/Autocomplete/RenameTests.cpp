#include "Autocomplete/MSSQLDialect.h"
#include "SQL/Scope/KNSQLRename.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace RenameTests {

/// The name at the bar with its places in angle brackets; empty if nothing can be renamed there.
std::string placesIn(const char *marked, QStringList *taken = nullptr)
{
    QString text = QString::fromUtf8(marked);
    const qsizetype caret = text.indexOf(u'|');
    text.remove(caret, 1);
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(text);
    const KNSQLRename rename = KNFindSQLRename(tokens, caret);
    if (taken)
        *taken = rename.taken;
    if (rename.kind == KNSQLRename::Kind::None)
        return {};
    const KNRange chosen = rename.places.at(rename.chosen);
    EXPECT_TRUE(chosen.location <= caret && caret <= chosen.location + chosen.length) << marked;
    for (auto place = rename.places.crbegin(); place != rename.places.crend(); ++place)
        text.insert(place->location + place->length, u'>').insert(place->location, u'<');
    return text.toStdString();
}

TEST(RenameOfAnAlias, FindsItsDeclarationAndUses)
{
    const std::string expected = "SELECT <o>.Id, <O>.* FROM Orders AS <o> WHERE <o>.Id > 1 ORDER BY <o>.Id";
    EXPECT_EQ(placesIn("SELECT |o.Id, O.* FROM Orders AS o WHERE o.Id > 1 ORDER BY o.Id"), expected);
    EXPECT_EQ(placesIn("SELECT o.Id, O|.* FROM Orders AS o WHERE o.Id > 1 ORDER BY o.Id"), expected);
    EXPECT_EQ(placesIn("SELECT o.Id, O.* FROM Orders AS o| WHERE o.Id > 1 ORDER BY o.Id"), expected);
    EXPECT_EQ(placesIn("SELECT x.a FROM f(1) |x JOIN (SELECT 1 AS a) y ON y.a = x.a"),
              "SELECT <x>.a FROM f(1) <x> JOIN (SELECT 1 AS a) y ON y.a = <x>.a");
    EXPECT_EQ(placesIn("SELECT [my o].a FROM t AS [my |o]"), "SELECT <[my o]>.a FROM t AS <[my o]>");
}

TEST(RenameOfAnAlias, LeavesInnerScopesThatDefineItAnew)
{
    EXPECT_EQ(placesIn("SELECT |o.a FROM t o WHERE EXISTS (SELECT 1 FROM s o WHERE o.a = 1) AND o.b = 2"),
              "SELECT <o>.a FROM t <o> WHERE EXISTS (SELECT 1 FROM s o WHERE o.a = 1) AND <o>.b = 2");
    EXPECT_EQ(placesIn("SELECT o.a FROM t o WHERE EXISTS (SELECT 1 FROM s o WHERE o|.a = 1) AND o.b = 2"),
              "SELECT o.a FROM t o WHERE EXISTS (SELECT 1 FROM s <o> WHERE <o>.a = 1) AND o.b = 2");
    EXPECT_EQ(placesIn("SELECT |o.a FROM t o WHERE EXISTS (SELECT 1 FROM o WHERE o.a = 1)"),
              "SELECT <o>.a FROM t <o> WHERE EXISTS (SELECT 1 FROM o WHERE o.a = 1)");
}

TEST(RenameOfAnAlias, GoesIntoSubqueriesThatSeeIt)
{
    EXPECT_EQ(placesIn("SELECT (SELECT MAX(s.x) FROM s WHERE s.id = |o.id) FROM t o CROSS APPLY "
                       "(SELECT o.b FROM u) x"),
              "SELECT (SELECT MAX(s.x) FROM s WHERE s.id = <o>.id) FROM t <o> CROSS APPLY "
              "(SELECT <o>.b FROM u) x");
    // A derived table does not see the sources beside it.
    EXPECT_EQ(placesIn("SELECT |o.a FROM t o JOIN (SELECT o.b FROM u) x ON x.b = o.b"),
              "SELECT <o>.a FROM t <o> JOIN (SELECT o.b FROM u) x ON x.b = <o>.b");
}

TEST(RenameOfAnAlias, StaysInItsStatementAndItsPartOfAUnion)
{
    EXPECT_EQ(placesIn("SELECT o.a FROM t o; SELECT |o.a FROM t o"),
              "SELECT o.a FROM t o; SELECT <o>.a FROM t <o>");
    EXPECT_EQ(placesIn("SELECT o.a FROM t o\nGO\nSELECT |o.a FROM t o"),
              "SELECT o.a FROM t o\nGO\nSELECT <o>.a FROM t <o>");
    EXPECT_EQ(placesIn("SELECT o.a FROM t o UNION ALL SELECT |o.a FROM s o"),
              "SELECT o.a FROM t o UNION ALL SELECT <o>.a FROM s <o>");
    EXPECT_EQ(placesIn("WITH c AS (SELECT o.a FROM t o) SELECT |o.a FROM c o"),
              "WITH c AS (SELECT o.a FROM t o) SELECT <o>.a FROM c <o>");
}

TEST(RenameOfAnAlias, IncludesTheTargetOfAChange)
{
    EXPECT_EQ(placesIn("UPDATE o SET o.a = 1, b = o.c FROM Orders |o WHERE o.a = 2"),
              "UPDATE <o> SET <o>.a = 1, b = <o>.c FROM Orders <o> WHERE <o>.a = 2");
    EXPECT_EQ(placesIn("DELETE |o FROM Orders o WHERE o.a = 2"),
              "DELETE <o> FROM Orders <o> WHERE <o>.a = 2");
    EXPECT_EQ(placesIn("DELETE FROM o FROM Orders o WHERE |o.a = 2"),
              "DELETE FROM <o> FROM Orders <o> WHERE <o>.a = 2");
    EXPECT_EQ(placesIn("UPDATE Orders SET a = 1 FROM Orders |o WHERE o.a = 2"),
              "UPDATE Orders SET a = 1 FROM Orders <o> WHERE <o>.a = 2");
}

TEST(RenameOfAnAlias, KnowsBothSidesOfAMerge)
{
    EXPECT_EQ(placesIn("MERGE INTO Orders AS |t USING Source AS s ON s.Id = t.Id WHEN MATCHED THEN "
                       "UPDATE SET t.a = s.a WHEN NOT MATCHED THEN INSERT (Id) VALUES (s.Id);"),
              "MERGE INTO Orders AS <t> USING Source AS s ON s.Id = <t>.Id WHEN MATCHED THEN "
              "UPDATE SET <t>.a = s.a WHEN NOT MATCHED THEN INSERT (Id) VALUES (s.Id);");
    EXPECT_EQ(placesIn("MERGE INTO Orders AS t USING (SELECT t.Id FROM x t) AS s ON |s.Id = t.Id "
                       "WHEN NOT MATCHED THEN INSERT (Id) VALUES (s.Id);"),
              "MERGE INTO Orders AS t USING (SELECT t.Id FROM x t) AS <s> ON <s>.Id = t.Id "
              "WHEN NOT MATCHED THEN INSERT (Id) VALUES (<s>.Id);");
}

TEST(RenameOfAnAlias, TellsSchemasAndMethodsApart)
{
    EXPECT_EQ(placesIn("SELECT |o.a, o.f(1), o.Data.value('.', 'int') FROM o.t o CROSS APPLY "
                       "o.Data.nodes('/a') AS n(c) JOIN o.u ON 1 = 1"),
              "SELECT <o>.a, o.f(1), <o>.Data.value('.', 'int') FROM o.t <o> CROSS APPLY "
              "<o>.Data.nodes('/a') AS n(c) JOIN o.u ON 1 = 1");
    EXPECT_EQ(placesIn("SELECT |o.o, x.o FROM t o JOIN x ON x.o = o.o"),
              "SELECT <o>.o, x.o FROM t <o> JOIN x ON x.o = <o>.o");
}

TEST(RenameOfAnAlias, KeepsStringsAndComments)
{
    EXPECT_EQ(placesIn("SELECT |o.a /* o.a */, 'o.a' FROM t o -- o.a"),
              "SELECT <o>.a /* o.a */, 'o.a' FROM t <o> -- o.a");
}

TEST(RenameOfAnAlias, KnowsTheNamesThatAreTaken)
{
    QStringList taken;
    placesIn("SELECT |a.x FROM t a JOIN s b ON b.x = a.x JOIN dbo.u ON u.x = a.x", &taken);
    taken.sort();
    EXPECT_EQ(taken, QStringList({QStringLiteral("b"), QStringLiteral("u")}));
}

TEST(RenameOfAVariable, FindsEveryUseInItsBatch)
{
    EXPECT_EQ(placesIn("DECLARE @a int = 1; SELECT @A FROM t WHERE x = |@a\nGO\nDECLARE @a int"),
              "DECLARE <@a> int = 1; SELECT <@A> FROM t WHERE x = <@a>\nGO\nDECLARE @a int");
    EXPECT_EQ(placesIn("CREATE PROCEDURE p @a int AS BEGIN SELECT @|a; SET @b = @a END"),
              "CREATE PROCEDURE p <@a> int AS BEGIN SELECT <@a>; SET @b = <@a> END");
    EXPECT_EQ(placesIn("DECLARE |@t TABLE (a int); INSERT @t VALUES (1); SELECT '@t' FROM @t -- @t"),
              "DECLARE <@t> TABLE (a int); INSERT <@t> VALUES (1); SELECT '@t' FROM <@t> -- @t");
}

TEST(RenameOfAVariable, LeavesTheParametersOfACalledProcedure)
{
    EXPECT_EQ(placesIn("EXEC @r = dbo.p @a = |@a, @b = @a OUTPUT; SET @a = 1"),
              "EXEC @r = dbo.p @a = <@a>, @b = <@a> OUTPUT; SET <@a> = 1");
    EXPECT_EQ(placesIn("EXEC |@r = p @r = 1 SELECT @r = 2"), "EXEC <@r> = p @r = 1 SELECT <@r> = 2");
    EXPECT_EQ(placesIn("EXECUTE @p| @p = 1"), "EXECUTE <@p> @p = 1");
    EXPECT_EQ(placesIn("EXEC p @a| = 1"), "");
    EXPECT_EQ(placesIn("EXEC (|@sql)"), "EXEC (<@sql>)");
}

TEST(Rename, RefusesOtherNames)
{
    for (const char *const text :
         {"SELECT Ord|ers.Id FROM Orders", "SELECT o.I|d FROM Orders o", "SEL|ECT 1", "SELECT @@ROW|COUNT",
          "SELECT 'o|' FROM t o", "SELECT 1 -- o|", "|", "SELECT 1 + | 2", "SELECT x.a FROM dbo.x|"})
        EXPECT_EQ(placesIn(text), "") << text;
}

TEST(Rename, KnowsNamesOfVariables)
{
    const KNSQLTokens tokens(MSSQLDialect::shared());
    for (const char *const name : {"@a", "@_1", "@\xC3\xA4", "@a#$"})
        EXPECT_TRUE(KNIsSQLVariable(tokens, QString::fromUtf8(name))) << name;
    for (const char *const name : {"", "@", "@@a", "a", "@a b", "@a;", "@a--", "@a-b", "1"})
        EXPECT_FALSE(KNIsSQLVariable(tokens, QString::fromUtf8(name))) << name;
}

} // namespace RenameTests
