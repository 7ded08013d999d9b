#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLWordLists.h"
#include "Support/PrintQt.h"

#include <QCollator>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

QString quoted(const QString &name)
{
    return MSSQLQuoting::escapeTableNameIfRequired(name);
}

QString plain(const char *name)
{
    return MSSQLQuoting::unescapeTableNameIfRequired(QString::fromUtf8(name));
}

} // namespace

TEST(QuotedName, HasBracketsOnlyWhereItNeedsThem)
{
    EXPECT_EQ(quoted(QStringLiteral("Orders")), QStringLiteral("Orders"));
    EXPECT_EQ(quoted(QStringLiteral("Order Details")), QStringLiteral("[Order Details]"));
    EXPECT_EQ(quoted(QStringLiteral("dbo.Orders")), QStringLiteral("dbo.Orders"));
    EXPECT_EQ(quoted(QStringLiteral("dbo.Order Details")), QStringLiteral("dbo.[Order Details]"));
    EXPECT_EQ(quoted(QStringLiteral("a.b.c")), QStringLiteral("[a.b.c]"));
    EXPECT_EQ(quoted(QStringLiteral("2019sales")), QStringLiteral("[2019sales]"));
    EXPECT_EQ(quoted(QStringLiteral("select")), QStringLiteral("[select]"));
    EXPECT_EQ(quoted(QStringLiteral("Select")), QStringLiteral("[Select]"));
    EXPECT_EQ(quoted(QStringLiteral("dbo.select")), QStringLiteral("dbo.[select]"));
    EXPECT_EQ(quoted(QStringLiteral("[x]")), QStringLiteral("[x]"));
    EXPECT_EQ(quoted(QStringLiteral("[]")), QStringLiteral("[[]]"));
    EXPECT_EQ(quoted(QStringLiteral("")), QStringLiteral(""));
    EXPECT_TRUE(quoted(QString()).isNull());
}

TEST(QuotedName, BracketsOddNamesWhole)
{
    EXPECT_EQ(quoted(QStringLiteral("a]b")), QStringLiteral("[a]b]"));
    EXPECT_EQ(quoted(QStringLiteral("O'Brien \"x\"")), QStringLiteral("[O'Brien \"x\"]"));
    EXPECT_EQ(quoted(QStringLiteral("naïve")), QStringLiteral("[naïve]"));
    EXPECT_EQ(quoted(QStringLiteral("🐘")), QStringLiteral("[🐘]"));
    EXPECT_EQ(quoted(QStringLiteral("100%@")), QStringLiteral("[100%@]"));
    EXPECT_EQ(quoted(QStringLiteral("a\nb")), QStringLiteral("[a\nb]"));
    const QString longName(128, QLatin1Char('x'));
    EXPECT_EQ(quoted(longName), longName);
}

TEST(QuotedName, LosesItsBracketsAgain)
{
    EXPECT_EQ(plain("[dbo].[Orders]"), QStringLiteral("dbo.Orders"));
    EXPECT_EQ(plain("[a].[b].[c]"), QStringLiteral("a.b.c"));
    EXPECT_EQ(plain("[abc"), QStringLiteral("abc"));
    EXPECT_EQ(plain("abc]"), QStringLiteral("abc"));
    EXPECT_EQ(plain("[[x]]"), QStringLiteral("[x]"));
    EXPECT_EQ(plain(""), QStringLiteral(""));
    EXPECT_TRUE(MSSQLQuoting::unescapeTableNameIfRequired(QString()).isNull());
}

TEST(QuotedName, OfATableHasItsSchemaWhenThereIsOne)
{
    EXPECT_EQ(MSSQLQuoting::escapeSchemaAndTable(QStringLiteral("my schema"), QStringLiteral("t")),
              QStringLiteral("[my schema].t"));
    EXPECT_EQ(MSSQLQuoting::escapeSchemaAndTable(QString(), QStringLiteral("my table")),
              QStringLiteral("[my table]"));
    EXPECT_EQ(MSSQLQuoting::escapeSchemaAndTable(QStringLiteral(""), QStringLiteral("t")),
              QStringLiteral("t"));
}

TEST(ValueLiteral, OfTextDoublesQuotes)
{
    const KNValue name(QStringLiteral("O'Brien"));
    EXPECT_EQ(MSSQLQuoting::escapeColumnValue(name), QStringLiteral("'O''Brien'"));
    EXPECT_EQ(MSSQLQuoting::databaseProviderEscape(name), QStringLiteral("'O''Brien'"));
    EXPECT_EQ(MSSQLQuoting::escapeColumnValue(KNValue(QStringLiteral(""))), QStringLiteral("''"));
}

TEST(ValueLiteral, OfTheTextNullIsNullInScriptsOnly)
{
    const KNValue text(QStringLiteral("Null"));
    EXPECT_EQ(MSSQLQuoting::databaseProviderEscape(text), QStringLiteral("NULL"));
    EXPECT_EQ(MSSQLQuoting::escapeColumnValue(text), QStringLiteral("'Null'"));
    EXPECT_EQ(MSSQLQuoting::databaseProviderEscape(KNValue()), QStringLiteral("NULL"));
    EXPECT_EQ(MSSQLQuoting::escapeColumnValue(KNValue()), QStringLiteral("NULL"));
}

TEST(ValueLiteral, OfBytesIsHexadecimal)
{
    const KNValue bytes(QByteArray("\x0a\xff", 2));
    EXPECT_EQ(MSSQLQuoting::databaseProviderEscape(bytes), QStringLiteral("0x0AFF"));
    EXPECT_EQ(MSSQLQuoting::escapeColumnValue(bytes), QStringLiteral("0x0aff"));
    EXPECT_EQ(MSSQLQuoting::databaseProviderEscape(KNValue(QByteArray(""))), QStringLiteral("0x"));
    EXPECT_EQ(MSSQLQuoting::escapeColumnValue(KNValue(QByteArray(""))), QStringLiteral("0x"));
}

TEST(ValueLiteral, OfNumbersIsTheNumber)
{
    for (const auto &literal : {&MSSQLQuoting::escapeColumnValue, &MSSQLQuoting::databaseProviderEscape}) {
        EXPECT_EQ(literal(KNValue(-5)), QStringLiteral("-5"));
        EXPECT_EQ(literal(KNValue(0.1)), QStringLiteral("0.1"));
        EXPECT_EQ(literal(KNValue(true)), QStringLiteral("1"));
        EXPECT_EQ(literal(KNValue(*KNDecimal::fromString(u"1.50"))), QStringLiteral("1.50"));
    }
}

TEST(ValueLiteral, DoublesABackslashAndTheLineEndBehindIt)
{
    const auto literal = [](const char *text) {
        return MSSQLQuoting::literal(KNValue(QString::fromUtf8(text)));
    };
    EXPECT_EQ(literal("a\\\nb"), QStringLiteral("'a\\\\\n\nb'"));
    EXPECT_EQ(literal("a\\\\\nb"), QStringLiteral("'a\\\\\\\n\nb'"));
    EXPECT_EQ(literal("\\\r\n"), QStringLiteral("'\\\\\r\n\r\n'"));
    EXPECT_EQ(literal("a\\b\\\r\n'"), QStringLiteral("'a\\b\\\\\r\n\r\n'''"));
    EXPECT_EQ(literal("\u00f1\\\n"), QStringLiteral("N'\u00f1\\\\\n\n'"));
    for (const char *const plain : {"\\", "\\b", "a\n\\", "\\\r", "\n", "\r\n"})
        EXPECT_EQ(literal(plain), QLatin1Char('\'') + QString::fromUtf8(plain) + QLatin1Char('\''));
    EXPECT_EQ(MSSQLQuoting::unicodeLiteral(QStringLiteral("it's\\\n")), QStringLiteral("N'it''s\\\\\n\n'"));
    for (const auto &exact : {&MSSQLQuoting::escapeColumnValue, &MSSQLQuoting::databaseProviderEscape})
        EXPECT_EQ(exact(KNValue(QStringLiteral("a\\\nb"))), QStringLiteral("'a\\\nb'"));
}

TEST(ValueLiteral, OfAFloatingPointNumberHasAnExponent)
{
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(0.1)), QStringLiteral("0.1e0"));
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(5.0)), QStringLiteral("5e0"));
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(1e20)), QStringLiteral("1e+20"));
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(-0.0)), QStringLiteral("-0e0"));
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(0.12345678901234566)), QStringLiteral("0.12345678901234566e0"));
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(0.1F)), QStringLiteral("CAST(0.1e0 AS real)"));
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(*KNDecimal::fromString(u"0.1"))), QStringLiteral("0.1"));
    EXPECT_EQ(MSSQLQuoting::literal(KNValue(5)), QStringLiteral("5"));
}

TEST(ValueLiteral, OfADateIsQuotedInScripts)
{
    EXPECT_EQ(MSSQLQuoting::databaseProviderEscape(
                  KNValue(QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5, 999), Qt::UTC))),
              QStringLiteral("'2020-01-02 03:04:05'"));
}

TEST(WordLists, AreSortedByTheLocaleAndFoundInAnyCase)
{
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    for (const QStringList &words : {MSSQLWordLists::keywords(), MSSQLWordLists::functions(),
                                     MSSQLWordLists::functionsAndKeywords(), MSSQLWordLists::dataTypes()}) {
        EXPECT_GT(words.size(), 10);
        EXPECT_TRUE(std::is_sorted(words.begin(), words.end(), collator));
    }
    for (const QString &keyword : MSSQLWordLists::keywords())
        EXPECT_TRUE(MSSQLWordLists::isKeyword(keyword.toLower())) << keyword.toStdString();
    EXPECT_TRUE(MSSQLWordLists::isKeyword(QStringLiteral("Current_Timestamp")));
    EXPECT_FALSE(MSSQLWordLists::isKeyword(QStringLiteral("CURRENT_")));
}
