#include "Autocomplete/KNNameDescription.h"
#include "Autocomplete/MSSQLDialect.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "VantorMSSQL/Autocomplete/CompletionCase.h"

#include <gtest/gtest.h>

namespace NameReferenceTests {

using Kind = KNNameReference::Kind;

/// A text whose name at the bar is looked up in the database of the completion cases.
struct LookedUp
{
    explicit LookedUp(const char *utf8, bool knowsNames = true)
        : text(QString::fromUtf8(utf8))
    {
        static const CompletionDatabase database;
        const qsizetype caret = text.indexOf(u'|');
        text.remove(caret, 1);
        KNSQLTokens tokens(MSSQLDialect::shared());
        tokens.setText(text);
        const KNNameReference::Catalog catalog(&database.catalog(), [](const KNCompletionCatalog *) {});
        reference = KNFindNameReference(tokens, caret, knowsNames ? catalog : nullptr);
    }

    /// "object dbo.Orders", "column dbo.Orders", "local 7", "variable 8", "function", or "none".
    QString meaning() const
    {
        if (!reference)
            return QStringLiteral("none");
        const QString place =
            reference->path.isEmpty() ? QString::number(reference->location) : reference->path.join(u'.');
        switch (reference->kind) {
        case Kind::Variable:
            return QStringLiteral("variable ") + place;
        case Kind::Local:
            return QStringLiteral("local ") + place;
        case Kind::Object:
            return (reference->object ? QStringLiteral("object ") : QStringLiteral("unknown ")) + place;
        case Kind::Column:
            return QStringLiteral("column ") + place;
        case Kind::Function:
            return QStringLiteral("function");
        }
        return QString();
    }

    QString text;
    std::optional<KNNameReference> reference;
};

QString meaningAt(const char *utf8)
{
    return LookedUp(utf8).meaning();
}

QString descriptionAt(const char *utf8)
{
    const LookedUp found(utf8);
    return found.reference ? KNNameDescription(*found.reference) : QString();
}

TEST(NameReference, FindsObjectsByAnyPartOfTheirName)
{
    EXPECT_EQ(meaningAt("SELECT * FROM Ord|ers"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("SELECT * FROM |Orders"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("SELECT * FROM Orders|"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("SELECT * FROM ORDERS|;"), q("object dbo.ORDERS"));
    EXPECT_EQ(meaningAt("SELECT * FROM d|bo.Orders"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("SELECT * FROM [dbo].[Order De|tails]"), q("object dbo.Order Details"));
    EXPECT_EQ(meaningAt("SELECT * FROM shop.hr.Emp|loyees"), q("object shop.hr.Employees"));
    EXPECT_EQ(meaningAt("SELECT * FROM shop..Ord|ers"), q("object shop..Orders"));
    EXPECT_EQ(meaningAt("EXEC sales.Place|Order 1"), q("object sales.PlaceOrder"));
    EXPECT_EQ(meaningAt("SELECT sales.Order|Total(1)"), q("object sales.OrderTotal"));
    EXPECT_EQ(meaningAt("SELECT * FROM sales.Orders|Of(1) o"), q("object sales.OrdersOf"));
    EXPECT_EQ(meaningAt("DECLARE @f dbo.Fl|ag"), q("object dbo.Flag"));
    EXPECT_EQ(meaningAt("SELECT * FROM Cli|ents"), q("object dbo.Clients"));
    EXPECT_EQ(meaningAt("INSERT INTO Ord|ers (OrderId) VALUES (1)"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("DROP TABLE Ord|ers"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("ALTER PROCEDURE dbo.Clean|Up AS SELECT 1"), q("object dbo.CleanUp"));
}

TEST(NameReference, LeadsFromAnAliasToItsTable)
{
    EXPECT_EQ(meaningAt("SELECT o|.OrderId FROM Orders o"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("SELECT 1 FROM Orders AS o|"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("UPDATE o| SET Status = 1 FROM dbo.Orders o"), q("object dbo.Orders"));
    EXPECT_EQ(meaningAt("DELETE x| FROM hr.Employees x"), q("object hr.Employees"));
    EXPECT_EQ(meaningAt("SELECT 1 FROM Orders o WHERE EXISTS (SELECT 1 FROM Products o WHERE o|.Name = 1)"),
              q("object dbo.Products"));
    EXPECT_EQ(meaningAt("SELECT 1 FROM Orders o WHERE EXISTS (SELECT 1 FROM Products p WHERE o|.Name = 1)"),
              q("object dbo.Orders"));
}

TEST(NameReference, FindsTheTableOfAColumn)
{
    EXPECT_EQ(meaningAt("SELECT Comp|anyName FROM Customers"), q("column dbo.Customers"));
    EXPECT_EQ(meaningAt("SELECT o.Cust|omerId FROM Customers c JOIN Orders o ON 1 = 1"),
              q("column dbo.Orders"));
    EXPECT_EQ(meaningAt("SELECT dbo.Orders.Sta|tus FROM dbo.Orders"), q("column dbo.Orders"));
    EXPECT_EQ(meaningAt("INSERT INTO Orders (Sta|tus) VALUES ('x')"), q("column dbo.Orders"));
    EXPECT_EQ(meaningAt("UPDATE Orders SET Sta|tus = 'x'"), q("column dbo.Orders"));
    EXPECT_EQ(meaningAt("SELECT * FROM Orders ORDER BY Order|edAt"), q("column dbo.Orders"));
}

TEST(NameReference, FindsDeclarationsInTheText)
{
    EXPECT_EQ(meaningAt("DECLARE @id int; SELECT @i|d"), q("variable 8"));
    EXPECT_EQ(meaningAt("DECLARE @i|d int"), q("variable 8"));
    EXPECT_EQ(meaningAt("CREATE PROCEDURE p @a int AS SELECT |@a"), q("variable 19"));
    EXPECT_EQ(meaningAt("WITH c AS (SELECT 1 AS n) SELECT * FROM c|"), q("local 5"));
    EXPECT_EQ(meaningAt("WITH c AS (SELECT 1 AS n) SELECT x|.n FROM c x"), q("local 5"));
    EXPECT_EQ(meaningAt("WITH c AS (SELECT 1 AS n) SELECT n| FROM c"), q("column 5"));
    EXPECT_EQ(meaningAt("CREATE TABLE #t (a int)\nGO\nSELECT * FROM #t|"), q("local 13"));
    EXPECT_EQ(meaningAt("SELECT 1 AS a INTO #t; SELECT * FROM #|t"), q("local 19"));
    EXPECT_EQ(meaningAt("DECLARE @t TABLE (a int); SELECT * FROM @t|"), q("local 8"));
    EXPECT_EQ(meaningAt("SELECT d|.n FROM (SELECT 1 AS n) AS d"), q("local 35"));
}

TEST(NameReference, IsNoneInStringsCommentsAndAtKeywords)
{
    EXPECT_EQ(meaningAt("SELECT 'Ord|ers'"), q("none"));
    EXPECT_EQ(meaningAt("-- Ord|ers\nSELECT 1"), q("none"));
    EXPECT_EQ(meaningAt("/* Ord|ers */"), q("none"));
    EXPECT_EQ(meaningAt("SEL|ECT 1"), q("none"));
    EXPECT_EQ(meaningAt("|"), q("none"));
    EXPECT_EQ(meaningAt("SELECT 1 + | 2"), q("none"));
    EXPECT_EQ(meaningAt("SELECT @nowh|ere"), q("none"));
}

TEST(NameReference, KeepsTheNameOfWhatIsNotKnown)
{
    EXPECT_EQ(meaningAt("SELECT * FROM dbo.Now|here"), q("unknown dbo.Nowhere"));
    EXPECT_EQ(meaningAt("DROP TRIGGER dbo.Orders_Aud|it"), q("unknown dbo.Orders_Audit"));
    EXPECT_EQ(LookedUp("SELECT * FROM Ord|ers", false).meaning(), q("unknown Orders"));
    EXPECT_EQ(LookedUp("SELECT o|.a FROM x.Orders o", false).meaning(), q("unknown x.Orders"));
    EXPECT_EQ(meaningAt("SELECT * FROM far.shop.dbo.Ord|ers"), q("unknown far.shop.dbo.Orders"));
}

TEST(NameDescription, TellsTheTypeOfColumnsAndVariables)
{
    EXPECT_EQ(descriptionAt("SELECT o.Order|Id FROM Orders o"),
              q("Orders.OrderId int not null, primary key"));
    EXPECT_EQ(descriptionAt("SELECT o.Sta|tus FROM Orders o"), q("Orders.Status varchar(10) null"));
    EXPECT_EQ(descriptionAt("SELECT ord|eredat FROM Orders"), q("Orders.OrderedAt datetime"));
    EXPECT_EQ(descriptionAt("DECLARE @id decimal(9, 2); SELECT @i|d"), q("@id decimal(9, 2)"));
    EXPECT_EQ(descriptionAt("EXEC sales.PlaceOrder @Cust|omerId = 1"), q("@CustomerId int"));
    EXPECT_EQ(descriptionAt("SELECT n| FROM (SELECT 1 AS n) AS d"), q("d.n"));
}

TEST(NameDescription, ListsColumnsAndParameters)
{
    EXPECT_EQ(descriptionAt("SELECT p|.Name FROM Products p"),
              q("table dbo.Products\n    ProductId int\n    Name nvarchar(80)\n    Price money"));
    EXPECT_EQ(descriptionAt("SELECT * FROM sales.Order|Totals"),
              q("view sales.OrderTotals\n    OrderId int\n    Total money"));
    EXPECT_EQ(descriptionAt("EXEC dbo.Clean|Up 1"), q("procedure dbo.CleanUp @Days int"));
    EXPECT_EQ(descriptionAt("SELECT sales.Order|Total(1)"), q("function sales.OrderTotal(@OrderId int)"));
    EXPECT_EQ(descriptionAt("CREATE TABLE #t (a int, b bit) SELECT * FROM #|t"),
              q("#t\n    a int\n    b bit"));
    EXPECT_EQ(descriptionAt("SELECT LE|FT('a', 1)").section(u'(', 0, 0), q("LEFT"));
    EXPECT_EQ(descriptionAt("SELECT * FROM dbo.Now|here"), QString());
}

TEST(NameDescription, EndsAfterTwentyColumns)
{
    QString columns;
    for (int number = 1; number <= 21; ++number)
        columns += QStringLiteral("%1c%2 int").arg(number > 1 ? q(", ") : QString()).arg(number);
    const QString text = QStringLiteral("CREATE TABLE #t (%1) SELECT * FROM |#t").arg(columns);
    const QStringList lines = descriptionAt(text.toUtf8().constData()).split(u'\n');
    ASSERT_EQ(lines.size(), 22); // the name, twenty columns, the rest
    EXPECT_EQ(lines[20], q("    c20 int"));
    EXPECT_EQ(lines[21], q("    ..."));
}

} // namespace NameReferenceTests
