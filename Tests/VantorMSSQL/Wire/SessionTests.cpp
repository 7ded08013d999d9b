#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;

TEST(Session, GoesToAnotherDatabaseWhateverItsNameHolds)
{
    SampleServerFixture server;
    const auto client = connectedClient(settings(server.port()));
    KNError error;
    for (const QString &name : {QStringLiteral("it's [a] name"), QStringLiteral("library")}) {
        run(*client,
            QStringLiteral("IF DB_ID(N'%1') IS NULL CREATE DATABASE [%2]")
                .arg(QString(name).replace(u'\'', QStringLiteral("''")),
                     QString(name).replace(u']', QStringLiteral("]]"))),
            &error);
        ASSERT_FALSE(error) << error.localizedDescription().toStdString();
        EXPECT_TRUE(client->changeDatabase(name, &error));
        EXPECT_EQ(client->currentDatabase(), name);
        EXPECT_EQ(scalar(*client, QStringLiteral("SELECT DB_NAME()")).text(), name);
    }
    EXPECT_FALSE(client->changeDatabase(QStringLiteral("x]; DROP DATABASE [library"), &error));
    EXPECT_TRUE(error);
    EXPECT_EQ(client->currentDatabase(), QStringLiteral("library"));
    KNError none;
    EXPECT_TRUE(client->databaseNames(&none).contains(QStringLiteral("it's [a] name")));
}

TEST(Session, IsReplacedWhereTheServerKeepsItInItsDatabase)
{
    SampleServerFixture server({.arguments = {"--edition", "azure"}});
    const auto client = connectedClient(settings(server.port()));
    run(*client, QStringLiteral("CREATE TABLE #mine (a int)"));
    KNError error;
    EXPECT_TRUE(client->changeDatabase(QStringLiteral("library"), &error))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(client->currentDatabase(), QStringLiteral("library"));
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT DB_NAME()")).text(), QStringLiteral("library"));
    run(*client, QStringLiteral("SELECT * FROM #mine"), &error);
    EXPECT_TRUE(error);
}

TEST(Session, TellsTheDatabasesOfTheServer)
{
    const auto client = connectedClient();
    KNError error;
    const QStringList names = client->databaseNames(&error);
    EXPECT_FALSE(error);
    EXPECT_TRUE(names.contains(QStringLiteral("shop")));
    EXPECT_TRUE(names.contains(QStringLiteral("library")));
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

TEST(Session, KnowsWhetherATransactionIsOpen)
{
    const auto client = connectedClient();
    KNError error;
    EXPECT_EQ(client->isInTransaction(&error), false);
    client->beginTransaction(&error);
    client->beginTransaction(&error);
    EXPECT_EQ(client->isInTransaction(&error), true);
    client->rollbackTransaction(&error);
    EXPECT_EQ(client->isInTransaction(&error), false);
    client->disconnect();
    EXPECT_EQ(client->isInTransaction(&error), std::nullopt);
    EXPECT_TRUE(error);
    EXPECT_TRUE(client->currentDatabase().isNull());
}

TEST(Session, KnowsWhichTextsMayChangeATransaction)
{
    const auto client = connectedClient();
    for (const char *text : {"begin TRAN", "commit", "Rollback transaction", "exec p", "EXECUTE p",
                             "set implicit_transactions on"})
        EXPECT_TRUE(client->mayChangeTransaction(QString::fromLatin1(text))) << text;
    for (const char *text : {"select 'commit'", "-- exec", "select [rollback] from transactions", ""})
        EXPECT_FALSE(client->mayChangeTransaction(QString::fromLatin1(text))) << text;
}
