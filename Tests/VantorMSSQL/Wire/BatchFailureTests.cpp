#include "Implementations/MSSQLMessageList.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;
using namespace HostileServerBytes;

// What a batch shows and reports when statements of it fail, wherever they stand.

namespace {

QStringList columnNamesOf(const QList<KNDatabaseResultSetPtr> &results)
{
    QStringList names;
    for (const auto &resultSet : results)
        names += resultSet->columnNames();
    return names;
}

QString redTextOf(const KNDatabaseResultSetPtr &resultSet)
{
    const KNDisplayMessage message = resultSet->messages().value(0);
    return message.colour == KNDisplayMessage::Colour::Red ? message.text : QString();
}

/// A client of a server that answers its next batch with these tokens, and the server.
struct Answered
{
    explicit Answered(const Bytes &tokens)
        : server(afterLogin({HostileServer::send(packet(tokens))}))
        , client(connectedClient(settings(server.port())))
    {
    }
    HostileServer server;
    std::unique_ptr<MSSQLClient> client;
};

const QString AnySql = QStringLiteral("SELECT a FROM dbo.t");
const QString Refusal = QStringLiteral("Msg 229, Level 14, State 1.\r\nThe SELECT permission was denied.");

Bytes refusal()
{
    return message(229, 14, "The SELECT permission was denied.");
}

/// Replies whose first part is fine and in which a later statement fails.
const std::vector<std::pair<const char *, Bytes>> &lateFailures()
{
    static const std::vector<std::pair<const char *, Bytes>> replies = {
        {"behind rows of the same statement",
         joined({intColumns({"a"}), intRow({1}), intRow({2}), refusal(), done(DoneError)})},
        {"behind a result",
         joined({intColumns({"a"}), intRow({1}), done(DoneCount | DoneMore, 1), refusal(), done(DoneError)})},
        {"behind an empty reply", joined({done(DoneMore), refusal(), done(DoneError)})},
        {"behind a row count", joined({done(DoneCount | DoneMore, 3), refusal(), done(DoneError)})},
        {"in front of a result", joined({done(DoneMore), refusal(), done(DoneError | DoneMore),
                                         intColumns({"a"}), intRow({1}), done(DoneCount, 1)})},
    };
    return replies;
}

} // namespace

class FailedFirstStatement : public testing::TestWithParam<const char *>
{
};

TEST_P(FailedFirstStatement, IsFollowedByTheResultsOfTheOthers)
{
    const auto client = connectedClient();
    KNError error;
    run(*client, QStringLiteral("CREATE TABLE #k (id int PRIMARY KEY) INSERT INTO #k VALUES (1)"));
    const auto results = run(*client, QString::fromLatin1(GetParam()), &error);
    ASSERT_GE(results.size(), 2);
    EXPECT_TRUE(error);
    EXPECT_EQ(redTextOf(results.first()), error.localizedDescription());
    EXPECT_TRUE(columnNamesOf(results).endsWith(QStringLiteral("later")));
    EXPECT_EQ(results.last()->rows().value(0, 0), KNValue(3));
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT 5")), KNValue(5)) << "the next batch works";
}

INSTANTIATE_TEST_SUITE_P(
    Statements, FailedFirstStatement,
    testing::Values("RAISERROR('b.', 16, 1) SELECT 3 AS later", "INSERT INTO #k VALUES (1) SELECT 3 AS later",
                    "DROP TABLE dbo.not_there SELECT 3 AS later",
                    "RAISERROR('b.', 16, 1) RAISERROR('c', 16, 1) SELECT 2 AS a SELECT 3 AS "
                    "later"));

TEST(FailedStatements, AThousandWithResultsBetweenThemAreAllShown)
{
    const auto client = connectedClient();
    KNError error;
    const auto results = run(*client,
                             QStringLiteral("DECLARE @i int SET @i = 0 WHILE @i < 1000 BEGIN SET @i = @i + 1 "
                                            "RAISERROR('failure %d', 16, 1, @i) SELECT @i AS a END"),
                             &error);
    EXPECT_EQ(columnNamesOf(results).count(QStringLiteral("a")), 1000);
    EXPECT_EQ(messageTexts(results).filter(QStringLiteral("failure ")).size(), 1000);
}

TEST(LateFailure, IsAnErrorOfQueriesAndNonQueries)
{
    for (const auto &[name, tokens] : lateFailures()) {
        SCOPED_TRACE(name);
        KNError error;
        Answered query(tokens);
        query.client->executeQuery(AnySql, &error);
        EXPECT_EQ(error.localizedDescription(), Refusal);
        EXPECT_EQ(error.domain(), QStringLiteral("SQLClient"));
        error.clear();
        Answered nonQuery(tokens);
        nonQuery.client->executeNonQuery(AnySql, &error);
        EXPECT_EQ(error.localizedDescription(), Refusal);
    }
}

TEST(LateFailure, OfABatchOfTheEditorIsAMessageOnly)
{
    for (const auto &[name, tokens] : lateFailures()) {
        SCOPED_TRACE(name);
        KNError error;
        Answered batch(tokens);
        const auto results = run(*batch.client, AnySql, &error);
        EXPECT_FALSE(error);
        EXPECT_EQ(messageTexts(results), QStringList{QStringLiteral("The SELECT permission was denied.")});
    }
}

TEST(LateFailure, EndsATransactionStatement)
{
    for (const auto &[name, tokens] : lateFailures()) {
        SCOPED_TRACE(name);
        KNError error;
        EXPECT_FALSE(Answered(tokens).client->beginTransaction(&error));
        EXPECT_FALSE(Answered(tokens).client->commitTransaction(&error));
        EXPECT_FALSE(Answered(tokens).client->rollbackTransaction(&error));
        EXPECT_EQ(error.localizedDescription(), Refusal);
    }
}

TEST(LateFailure, OfABulkInsertIsAnErrorThatRollsBack)
{
    for (const auto &[name, tokens] : lateFailures()) {
        SCOPED_TRACE(name);
        using Server = HostileServer;
        Server server(Server::joined(afterLogin({Server::send(packet(done()))}), // BEGIN TRANSACTION
                                     {Server::expect(BatchPacket), Server::send(packet(tokens)),
                                      Server::expect(BatchPacket), Server::send(packet(done()))}));
        const auto client = connectedClient(settings(server.port()));
        KNError error;
        EXPECT_FALSE(client->bulkInsert({{KNValue(1)}}, {QStringLiteral("t")}, {QStringLiteral("a")},
                                        {QStringLiteral("int")}, {}, &error));
        EXPECT_EQ(error.localizedDescription(), Refusal);
        EXPECT_TRUE(server.failures().empty()) << server.failures().front();
    }
}

TEST(LateFailure, OfASessionSetUpRefusesTheConnection)
{
    HostileServer server(HostileServer::joined(
        HostileServer::acceptedLogin(),
        {HostileServer::expect(BatchPacket),
         HostileServer::send(packet(joined({done(DoneMore), refusal(), done(DoneError)})))}));
    const auto details = settings(server.port());
    details->setTdsVersion(8);
    details->setUseNTLMv2(false);
    MSSQLClient client(details);
    KNError error;
    EXPECT_FALSE(client.connect(&error));
    EXPECT_EQ(error.localizedDescription(), Refusal);
}

TEST(Errors, AreClearedBySuccess)
{
    const auto client = connectedClient();
    KNError error(QStringLiteral("before"), 1, QStringLiteral("before"));
    EXPECT_TRUE(client->beginTransaction(&error));
    EXPECT_FALSE(error);
    error = KNError(QStringLiteral("before"), 1, QStringLiteral("before"));
    EXPECT_TRUE(client->executeQuery(QStringLiteral("SELECT 1"), &error));
    EXPECT_FALSE(error);
    error = KNError(QStringLiteral("before"), 1, QStringLiteral("before"));
    EXPECT_TRUE(client->executeNonQuery(QStringLiteral("SET NOCOUNT ON"), &error));
    EXPECT_FALSE(error);
}

TEST(UnsendableText, IsRefusedWithItsLine)
{
    const auto client = connectedClient();
    run(*client, QStringLiteral("CREATE TABLE #t (a int) INSERT INTO #t VALUES (1)"));
    const std::vector<std::pair<QChar, QString>> characters = {
        {QChar(0),
         QStringLiteral("Line 13 holds the character U+0000, behind which a server would see nothing. The "
                        "batch was not sent.")},
        {QChar(0xD83D),
         QStringLiteral("Line 13 holds half of a surrogate pair, which is no character. The batch was "
                        "not sent.")},
        {QChar(0xDE00),
         QStringLiteral("Line 13 holds half of a surrogate pair, which is no character. The batch was "
                        "not sent.")},
    };
    for (const auto &[character, text] : characters) {
        SCOPED_TRACE(int{character.unicode()});
        const QString sql = QStringLiteral("\n\nDELETE #t ") + character + QStringLiteral(" WHERE a = 2");
        KNResultSetHolder holder;
        KNError error;
        client->executeQueryDetails({{sql, {0, sql.size()}, 10}}, holder, {}, &error);
        EXPECT_EQ(error.localizedDescription(), text);
        ASSERT_EQ(holder.resultSets().size(), 1);
        EXPECT_EQ(redTextOf(holder.resultSets().first()), text);
        EXPECT_EQ(holder.resultSets().first()->calculatedLineNumber(), 13U);
    }
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT COUNT(*) FROM #t")), KNValue(1));
    EXPECT_EQ(scalar(*client, QStringLiteral("SELECT LEN(N'\U0001F600')")), KNValue(2))
        << "a whole pair is sent";
}

TEST(MessagesOfABatch, HaveALimitAndACountOfTheRest)
{
    constexpr int Sent = 25'000;
    Bytes tokens;
    for (int i = 0; i < Sent; ++i) {
        const Bytes one = message(50000, i == Sent - 1 ? 16 : 0, "hello");
        tokens.insert(tokens.end(), one.begin(), one.end());
    }
    const Bytes end = done();
    tokens.insert(tokens.end(), end.begin(), end.end());
    Answered batch(tokens);
    const auto results = run(*batch.client, AnySql);
    ASSERT_FALSE(results.isEmpty());
    const auto messages = results.last()->serverMessages();
    ASSERT_EQ(messages.size(), MSSQLMessageList::MostMessages + 1);
    EXPECT_EQ(messages.last().msgtext,
              QStringLiteral("15000 more messages were not kept. The most severe of them: hello"));
    EXPECT_EQ(messages.last().severity, 16);
}

TEST(MessagesOfABatch, WithoutAnyResultAreShown)
{
    Answered batch(message(50000, 0, "hello"));
    KNError error;
    const auto results = run(*batch.client, AnySql, &error);
    EXPECT_TRUE(messageTexts(results).contains(QStringLiteral("hello")));
}

TEST(AnswerThatBreaksTheProtocol, ReturnsErrorOrReceivedRows)
{
    const Bytes rows = joined({intColumns({"a"}), intRow({1}), intRow({2})});
    for (const std::uint16_t status : {0x20, 0x21, 0xFFFF, 0xFFFE}) {
        SCOPED_TRACE(status);
        Answered batch(joined({rows, done(status, 2), rows, done(DoneCount, 2)}));
        KNError error;
        const auto results = run(*batch.client, AnySql, &error);
        qsizetype shown = 0;
        for (const auto &resultSet : results)
            shown += resultSet->rows().rowCount();
        EXPECT_TRUE(error || shown == 4) << shown << " of 4 rows without an error";
        EXPECT_LT(results.size(), 10);
    }
}
