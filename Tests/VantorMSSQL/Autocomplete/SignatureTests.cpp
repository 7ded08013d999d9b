#include "Autocomplete/KNSignatureHelp.h"
#include "Autocomplete/MSSQLDialect.h"
#include "Implementations/MSSQLWordLists.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "VantorMSSQL/Autocomplete/CompletionCase.h"

#include <QSet>

#include <gtest/gtest.h>

#include <ctime>

namespace {

/// The signature at the bar of a text with the marked parameter in angle brackets; empty if there is none.
QString signatureAt(const char *utf8, const KNCompletionCatalog *catalog = nullptr)
{
    QString text = QString::fromUtf8(utf8);
    const qsizetype caret = text.indexOf(u'|');
    text.remove(caret, 1);
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(text);
    const auto help = KNSignatureAt(tokens, caret, catalog);
    if (!help)
        return QString();
    QString shown = help->signature.text;
    if (help->parameter >= 0) {
        const KNRange range = help->signature.parameters[help->parameter];
        shown.insert(range.location + range.length, u'>').insert(range.location, u'<');
    }
    return shown;
}

QString routineAt(const char *utf8)
{
    static const CompletionDatabase database;
    return signatureAt(utf8, &database.catalog());
}

} // namespace

TEST(FunctionSignatures, ExistForEveryKnownFunction)
{
    const auto &signatures = MSSQLDialect::shared().signatures;
    QSet<QString> names;
    for (const QString &function : MSSQLWordLists::functions()) {
        names.insert(function.toUpper());
        const auto found = signatures.constFind(function.toUpper());
        ASSERT_NE(found, signatures.constEnd()) << function.toStdString();
        EXPECT_EQ(found->name(), function);
        EXPECT_FALSE(found->details.isEmpty()) << function.toStdString();
        EXPECT_EQ(found->text.count(u'('), found->text.count(u')')) << function.toStdString();
        EXPECT_EQ(found->text.count(u'['), found->text.count(u']')) << function.toStdString();
    }
    for (auto it = signatures.begin(); it != signatures.end(); ++it)
        EXPECT_TRUE(names.contains(it->name().toUpper())) << it.key().toStdString();
}

TEST(SignatureHelp, MarksTheParameterAtTheCaret)
{
    EXPECT_EQ(signatureAt("SELECT DATEADD(|"), q("DATEADD(<datepart>, number, date)"));
    EXPECT_EQ(signatureAt("SELECT dateadd(day, |"), q("DATEADD(datepart, <number>, date)"));
    EXPECT_EQ(signatureAt("SELECT DATEADD(day, 1, |GETDATE()) FROM t"),
              q("DATEADD(datepart, number, <date>)"));
    EXPECT_EQ(signatureAt("SELECT DATEADD(day, 1, 2, |"), q("DATEADD(datepart, number, date)"));
    EXPECT_EQ(signatureAt("SELECT CHARINDEX('a', 'b', |"), q("CHARINDEX(find, text, [<start>])"));
    EXPECT_EQ(signatureAt("SELECT CONCAT('a', 'b', 'c', 'd|'"), q("CONCAT(value_1, value_2, <...>)"));
    EXPECT_EQ(signatureAt("SELECT GETDATE(|"), q("GETDATE()"));
}

TEST(SignatureHelp, ShowsTheInnermostCall)
{
    EXPECT_EQ(signatureAt("SELECT ISNULL(LEFT(a, |"), q("LEFT(text, <count>)"));
    EXPECT_EQ(signatureAt("SELECT ISNULL(LEFT(a, 1), |"), q("ISNULL(expression, <replacement>)"));
    EXPECT_EQ(signatureAt("SELECT ISNULL((1 + 2) * (3|"), q("ISNULL(<expression>, replacement)"));
    EXPECT_EQ(signatureAt("SELECT ISNULL(a, (SELECT b, |"), q("ISNULL(expression, <replacement>)"));
}

TEST(SignatureHelp, ShowsNothingOutsideOfCalls)
{
    for (const char *const text :
         {"|", "SELECT |", "SELECT LEFT(a, 1)|", "SELECT LEFT(a, 1), |", "SELECT a FROM t WHERE b IN (1, |",
          "INSERT INTO t (a, |", "SELECT Unknown(1, |", "SELECT dbo.LEFT(1, |", "SELECT LEFT(a /* , | */",
          "SELECT 1 -- LEFT(|", "SELECT LEFT(a; SELECT b, |"})
        EXPECT_EQ(signatureAt(text), QString()) << text;
}

TEST(SignatureHelp, EndsAtTheNextStatement)
{
    EXPECT_EQ(signatureAt("SELECT LEFT(a,\nSELECT b, |"), QString());
    EXPECT_EQ(signatureAt("SELECT LEFT(a,\nGO\nPRINT |"), QString());
    EXPECT_EQ(signatureAt("SELECT LEFT(a, CASE WHEN b = 1 THEN 2 END + |"), q("LEFT(text, <count>)"));
    EXPECT_EQ(signatureAt("SELECT ISNULL((SELECT 1 UNION ALL SELECT 2 FROM t WHERE a = |"),
              q("ISNULL(<expression>, replacement)"));
}

TEST(SignatureHelp, KnowsFunctionsWithASchemaOfTheSystem)
{
    EXPECT_EQ(signatureAt("SELECT * FROM sys.fn_my_permissions(NULL, |"),
              q("fn_my_permissions(securable, <securable_class>)"));
    EXPECT_EQ(signatureAt("SELECT $PARTITION.pf(|"), q("$PARTITION.function(<expression>)"));
}

TEST(SignatureHelp, KnowsRoutinesOfTheDatabase)
{
    EXPECT_EQ(routineAt("SELECT * FROM sales.OrdersOf(|"), q("sales.OrdersOf(<@CustomerId int>)"));
    EXPECT_EQ(routineAt("EXEC sales.PlaceOrder |"),
              q("sales.PlaceOrder <@CustomerId int>, @ProductId int, @Quantity smallint"));
    EXPECT_EQ(routineAt("EXEC @r = [sales].[placeorder] 1, |"),
              q("sales.PlaceOrder @CustomerId int, <@ProductId int>, @Quantity smallint"));
    EXPECT_EQ(routineAt("EXEC sales.PlaceOrder @ProductId = 2, @quantity = |"),
              q("sales.PlaceOrder @CustomerId int, @ProductId int, <@Quantity smallint>"));
    EXPECT_EQ(routineAt("EXEC sales.PlaceOrder @Quantity = |"),
              q("sales.PlaceOrder @CustomerId int, @ProductId int, <@Quantity smallint>"));
    EXPECT_EQ(routineAt("EXEC CleanUp |"), q("dbo.CleanUp <@Days int>"));
    EXPECT_EQ(routineAt("EXEC sales.OrdersOf |"), QString());
    EXPECT_EQ(routineAt("EXEC sales.PlaceOrder 1; SELECT |"), QString());
    EXPECT_EQ(routineAt("EXEC sales.PlaceOrder 1\nSELECT a, |"), QString());
    EXPECT_EQ(routineAt("EXEC sales.PlaceOrder 1\nGO\n|"), QString());
}

TEST(SignatureHelp, KnowsRoutinesOfOtherDatabases)
{
    EXPECT_EQ(routineAt("EXEC shop.sales.PlaceOrder 1, |"),
              q("sales.PlaceOrder @CustomerId int, <@ProductId int>, @Quantity smallint"));
    EXPECT_EQ(routineAt("EXEC shop..CleanUp |"), q("dbo.CleanUp <@Days int>"));
    EXPECT_EQ(routineAt("SELECT shop.sales.OrderTotal(|"), q("sales.OrderTotal(<@OrderId int>)"));
    EXPECT_EQ(routineAt("SELECT 1 + [shop].[sales].[OrderTotal](|"), q("sales.OrderTotal(<@OrderId int>)"));
    EXPECT_EQ(routineAt("EXEC nowhere.sales.PlaceOrder |"), QString());
    EXPECT_EQ(routineAt("EXEC far.shop.sales.PlaceOrder |"), QString());
}

TEST(SignatureHelp, TakesTimeInProportionToTheText)
{
    const QString text = q("SELECT LEFT(") + q("(a,").repeated(100'000);
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(text);
    const std::clock_t begin = std::clock();
    for (int step = 0; step < 100; ++step)
        KNSignatureAt(tokens, text.size(), nullptr);
    EXPECT_LT(double(std::clock() - begin) / CLOCKS_PER_SEC, 1);
}
