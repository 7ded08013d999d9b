#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <gtest/gtest.h>

namespace SampleServer {

namespace {

/// A client that asks to stop when the engine looks for the n-th time.
class ImpatientSink : public RecordingSink
{
public:
    explicit ImpatientSink(int patience)
        : m_patience(patience)
    {
    }
    bool attentionRequested() override { return --m_patience <= 0; }
    bool wasAsked() const { return m_patience <= 0; }

private:
    int m_patience;
};

std::string value(Session &session, std::string_view sql)
{
    RecordingSink sink;
    session.executeBatch(sql, sink);
    return sink.scalar();
}

/// Stops a statement at every moment the engine allows, inside a transaction that changed a row before.
void stopEverywhere(const std::string &statement)
{
    Session session(std::make_shared<Server>(Server::Options{}), "sa", "shop");
    value(session, "CREATE TABLE t (a int, b int) INSERT t VALUES (1, 0) INSERT t SELECT id + 10, 1 FROM "
                   "generate_rows(600)");
    const std::string before = value(session, "SELECT SUM(a) FROM t");
    bool stopped = true;
    for (int patience = 1; stopped; ++patience) {
        value(session, "BEGIN TRAN UPDATE t SET b = 7 WHERE a = 1");
        ImpatientSink sink(patience);
        session.executeBatch(statement, sink);
        stopped = sink.wasAsked();
        EXPECT_TRUE(sink.errors().empty()) << statement << '\n' << sink.log();
        EXPECT_EQ(value(session, "SELECT @@TRANCOUNT"), "1");
        EXPECT_EQ(value(session, "SELECT b FROM t WHERE a = 1"), "7") << statement << ' ' << patience;
        if (stopped) {
            EXPECT_EQ(value(session, "SELECT SUM(a) FROM t"), before) << statement << ' ' << patience;
        }
        value(session, "ROLLBACK");
        EXPECT_EQ(value(session, "SELECT b FROM t WHERE a = 1"), "0");
        ASSERT_LT(patience, 5000);
    }
}

} // namespace

TEST(Attention, UndoesAnInsertWhereverItStops)
{
    stopEverywhere("INSERT t SELECT id + 10, 1 FROM generate_rows(1500)");
}

TEST(Attention, UndoesAnUpdateWhereverItStops)
{
    stopEverywhere("UPDATE t SET a = a + 1 WHERE a > 1");
}

TEST(Attention, UndoesADeleteWhereverItStops)
{
    stopEverywhere("DELETE t WHERE a > 1");
}

TEST(Attention, UndoesADefinitionWhereverItStops)
{
    stopEverywhere("SELECT a, b INTO made FROM t DROP TABLE made");
}

} // namespace SampleServer
