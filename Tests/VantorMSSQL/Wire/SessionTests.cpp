#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;

TEST(Session, ChangesToDatabaseWithAnyName)
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

TEST(Session, ListsDatabases)
{
    const auto client = connectedClient();
    KNError error;
    const QStringList names = client->databaseNames(&error);
    EXPECT_FALSE(error);
    EXPECT_TRUE(names.contains(QStringLiteral("shop")));
    EXPECT_TRUE(names.contains(QStringLiteral("library")));
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

TEST(Session, ReportsOpenTransaction)
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

TEST(Session, DetectsTextsThatMayChangeTransaction)
{
    const auto client = connectedClient();
    for (const char *text : {"begin TRAN", "commit", "Rollback transaction", "exec p", "EXECUTE p",
                             "set implicit_transactions on", "SET NOCOUNT, ansi_defaults ON"})
        EXPECT_TRUE(client->mayChangeTransaction(QString::fromLatin1(text))) << text;
    for (const char *text : {"select 'commit'", "-- exec", "select [rollback] from transactions", ""})
        EXPECT_FALSE(client->mayChangeTransaction(QString::fromLatin1(text))) << text;
}

TEST(SessionState, DetectsStatementsThatChangeSession)
{
    const MSSQLClient client(settings(1));
    const auto after = [&](const char *sql) { return client.sessionStateAfter(QString::fromUtf8(sql)); };
    for (const char *sql : {"BEGIN TRAN", "begin transaction", "SET IMPLICIT_TRANSACTIONS ON", "EXEC p"})
        EXPECT_TRUE(after(sql).hasTransaction) << sql;
    for (const char *sql : {"set implicit_transactions on", "SET NOCOUNT, ANSI_DEFAULTS ON"})
        EXPECT_TRUE(after(sql).beginsTransactions) << sql;
    for (const char *sql : {"BEGIN TRAN", "SET NOCOUNT ON", "EXEC p", "SELECT 'IMPLICIT_TRANSACTIONS'"})
        EXPECT_FALSE(after(sql).beginsTransactions) << sql;
    for (const char *sql : {"CREATE TABLE #t (a int)", "SELECT 1 AS a INTO #t", "select * into [#t] from x",
                            "create /* a */ table\n ##all (a int)"})
        EXPECT_TRUE(after(sql).hasTemporaryTables) << sql;
    for (const char *sql :
         {"SET NOCOUNT ON", "set transaction isolation level snapshot", "SET ROWCOUNT 5",
          "SET LANGUAGE 'German'", "EXECUTE AS USER = 'x'", "EXEC sp_set_session_context N'a', 1"})
        EXPECT_TRUE(after(sql).hasOptions) << sql;
    for (const char *sql :
         {"SET ROWCOUNT 5", "SET SHOWPLAN_TEXT ON", "SET STATISTICS IO ON", "EXECUTE AS USER = 'x'",
          "EXEC sp_set_session_context N'a', 1", "SET ANSI_DEFAULTS ON"})
        EXPECT_TRUE(after(sql).hasUnknownOptions) << sql;
    for (const char *sql : {"SET NOCOUNT ON", "set transaction isolation level snapshot", "SET DATEFIRST 1",
                            "SET XACT_ABORT ON SET TEXTSIZE 100", "SELECT 1"})
        EXPECT_FALSE(after(sql).hasUnknownOptions) << sql;
    for (const char *sql :
         {"SELECT 1", "UPDATE t SET language = 'x', a = 1", "SET @x = 1", "PRINT 'SET NOCOUNT ON'",
          "-- SET NOCOUNT ON\nSELECT 1", "SELECT * FROM #t", "CREATE TABLE t (a int)"}) {
        EXPECT_FALSE(after(sql).hasTransaction) << sql;
        EXPECT_FALSE(after(sql).hasTemporaryTables) << sql;
        EXPECT_FALSE(after(sql).hasOptions) << sql;
    }
}

TEST(Session, WithATransactionIsNotReplacedForAnotherDatabase)
{
    SampleServerFixture server({.arguments = {"--edition", "azure"}});
    const auto client = connectedClient(settings(server.port()));
    run(*client, QStringLiteral("BEGIN TRANSACTION"));
    KNError error;
    EXPECT_FALSE(client->changeDatabase(QStringLiteral("library"), &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("transaction")))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT @@TRANCOUNT")), KNValue(1));
}
