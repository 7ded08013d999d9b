#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

class ManyTables : public testing::Test
{
protected:
    static std::shared_ptr<Server> makeServer()
    {
        Server::Options options;
        options.samples = false;
        options.tables = 1000;
        return std::make_shared<Server>(options);
    }

    std::string scalar(const std::string &sql)
    {
        RecordingSink sink;
        session.executeBatch(sql, sink);
        EXPECT_TRUE(sink.errors().empty()) << sink.log();
        return sink.scalar();
    }

    std::shared_ptr<Server> server = makeServer();
    Session session{server, "sa", "many"};
};

} // namespace

TEST_F(ManyTables, AreListedWithTheirKeys)
{
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM sys.tables"), "1000");
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM sys.tables WHERE SCHEMA_NAME(schema_id) = 'archive'"), "100");
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM sys.key_constraints WHERE name LIKE 'PK[_]Table%'"), "1000");
    EXPECT_EQ(scalar("SELECT SUM(rows) FROM sys.partitions WHERE object_id > 0"), "0");
}

TEST_F(ManyTables, GetTheirStorageWhenFirstUsed)
{
    EXPECT_EQ(scalar("SELECT COUNT(*) FROM Table00001 a JOIN archive.Table00010 b ON a.Id = b.Id"), "0");
    EXPECT_EQ(scalar("INSERT INTO Table00002 (Name) VALUES (N'one') SELECT COUNT(*) FROM Table00002"), "1");
    EXPECT_EQ(scalar("BEGIN TRAN INSERT INTO Table00003 (Name) VALUES (N'x') ROLLBACK SELECT COUNT(*) FROM "
                     "Table00003"),
              "0");
    EXPECT_EQ(
        scalar("ALTER TABLE Table00004 ADD Extra int NULL CONSTRAINT FK_Extra REFERENCES Table00005 (Id) "
               "INSERT INTO Table00005 (Name) VALUES (N'x') INSERT INTO Table00004 (Name, Extra) VALUES "
               "(N'y', 1) "
               "SELECT Extra FROM Table00004"),
        "1");
    EXPECT_EQ(scalar("DROP TABLE Table00006 SELECT COUNT(*) FROM sys.tables"), "999");
    RecordingSink sink;
    session.executeBatch("INSERT INTO Table00007 (Name) VALUES (NULL)", sink);
    EXPECT_EQ(sink.errors(), std::vector<std::int32_t>{515});
}
