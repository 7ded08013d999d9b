#include "Vantor/Program.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

Outcome complete(const char *text, const char *place, const QStringList &options = {})
{
    const QString server = QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port());
    return Program(QStringList{QStringLiteral("complete"), QStringLiteral("-"), QStringLiteral("--at"),
                               QString::fromLatin1(place), QStringLiteral("--server"), server,
                               QStringLiteral("--user"), QStringLiteral("sa"), QStringLiteral("--database"),
                               QStringLiteral("shop")} +
                       options,
                   text)
        .wait();
}

} // namespace

TEST(CompleteCommand, PrintsTheEntriesBestFirst)
{
    const Outcome outcome = complete("SELECT 1\nSELECT o. FROM Orders o", "2,10");
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_TRUE(outcome.output.startsWith("OrderId\tcolumn\to\tint\nCustomerId\tcolumn\to\tint\n"))
        << outcome.output.toStdString();
    EXPECT_FALSE(outcome.output.contains("SELECT"));
}

TEST(CompleteCommand, PrintsJson)
{
    const Outcome outcome = complete("EXEC sales.pl", "1,14", {QStringLiteral("--json")});
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    const QJsonArray entries = QJsonDocument::fromJson(outcome.output).array();
    ASSERT_EQ(entries.size(), 1);
    const QJsonObject entry = entries.first().toObject();
    EXPECT_EQ(entry.value(QStringLiteral("name")).toString(), QStringLiteral("PlaceOrder"));
    EXPECT_EQ(entry.value(QStringLiteral("kind")).toString(), QStringLiteral("procedure"));
    EXPECT_EQ(entry.value(QStringLiteral("parent")).toString(), QStringLiteral("sales"));
    EXPECT_TRUE(entry.value(QStringLiteral("type")).isNull());
}

TEST(CompleteCommand, PrintsSnippetsWhereAStatementBegins)
{
    const Outcome outcome = complete("droptablei", "1,11");
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_EQ(outcome.output, "DROP TABLE IF EXISTS ${1:dbo}.${2:TableName};$0\tsnippet\t\t"
                              "Drop a table if it exists, 2016 and later\n");
}

TEST(CompleteCommand, PrintsAnEmptyListInsideOfAString)
{
    const Outcome outcome = complete("SELECT 'o. '", "1,11", {QStringLiteral("--json")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "[]\n");
}

TEST(CompleteCommand, RefusesPlacesThatTheFileDoesNotHave)
{
    for (const char *const place : {"3,1", "1,100", "0,1", "1", "a,b", ""}) {
        const Outcome outcome = complete("SELECT 1\n", place);
        EXPECT_EQ(outcome.status, 2) << place;
        EXPECT_TRUE(outcome.output.isEmpty()) << place;
        EXPECT_FALSE(outcome.errors.isEmpty()) << place;
    }
}

TEST(CompleteCommand, ReportsAServerThatCannotBeReached)
{
    const Outcome outcome =
        Program({QStringLiteral("complete"), QStringLiteral("-"), QStringLiteral("--at"),
                 QStringLiteral("1,1"), QStringLiteral("--server"), QStringLiteral("127.0.0.1,1"),
                 QStringLiteral("--user"), QStringLiteral("sa")},
                "SELECT 1")
            .wait();
    EXPECT_EQ(outcome.status, 3);
}
