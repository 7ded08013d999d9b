#include "Engine/Server.h"
#include "Engine/Session.h"
#include "Support/RecordingSink.h"

#include <gtest/gtest.h>

using namespace SampleServer;

// Statements that would take the machine's stack or memory are refused with the server's errors, and the
// session goes on.

namespace {

std::string repeated(const std::string &part, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += part;
    return text;
}

/// The errors of a batch; 0 when the session does not answer afterwards.
std::vector<std::int32_t> errorsOf(const std::string &sql)
{
    Session session(std::make_shared<Server>(Server::Options()), "sa", "shop");
    RecordingSink sink;
    session.executeBatch(sql, sink);
    RecordingSink next;
    session.executeBatch("SELECT 5", next);
    return next.scalar() == "5" ? sink.errors() : std::vector<std::int32_t>{0};
}

/// The value that a batch selects; its errors where there are any.
std::string scalarOf(const std::string &sql)
{
    Session session(std::make_shared<Server>(Server::Options()), "sa", "shop");
    RecordingSink sink;
    session.executeBatch(sql, sink);
    return sink.errors().empty() ? sink.scalar() : "error " + std::to_string(sink.errors().front());
}

using Errors = std::vector<std::int32_t>;

} // namespace

TEST(Limits, TooManyCombinedQueriesAreError8631)
{
    EXPECT_EQ(errorsOf("SELECT 1" + repeated(" UNION ALL SELECT 1", 20'000)), Errors{8631});
    EXPECT_EQ(errorsOf("SELECT 1" + repeated(" INTERSECT SELECT 1", 20'000)), Errors{8631});
}

TEST(Limits, HundredsOfQueriesAreCombined)
{
    EXPECT_EQ(scalarOf("SELECT COUNT(*) FROM (SELECT 1 AS a" + repeated(" UNION ALL SELECT 1", 499) + ") q"),
              "500");
    EXPECT_EQ(errorsOf("SELECT 1" + repeated(" UNION ALL SELECT 1", 500)), Errors{8631});
    EXPECT_EQ(scalarOf("SELECT 1" + repeated(" UNION SELECT 1", 499)), "1");
    EXPECT_EQ(scalarOf("SELECT 1" + repeated(" INTERSECT SELECT 1", 499)), "1");
    EXPECT_EQ(scalarOf("SELECT 7" + repeated(" EXCEPT SELECT 1", 499)), "7");
    EXPECT_EQ(
        scalarOf("SELECT 1 AS a" + repeated(" UNION ALL SELECT 1", 498) + " UNION ALL SELECT 0 ORDER BY a"),
        "0");
}

TEST(Limits, CombinedQueriesMayWidenTheirColumnsAtEachStep)
{
    std::string sql = "SELECT MAX(LEN(a)) FROM (SELECT CAST('x' AS varchar(1)) AS a";
    for (int length = 2; length <= 100; ++length)
        sql += " UNION SELECT CAST(REPLICATE('x', " + std::to_string(length) + ") AS varchar(" +
               std::to_string(length) + "))";
    EXPECT_EQ(scalarOf(sql + ") q"), "100");
}

TEST(Limits, TooManyColumnsAreError1056)
{
    EXPECT_EQ(errorsOf("SELECT 1" + repeated(", 1", 70'000)), Errors{1056});
    EXPECT_EQ(errorsOf("SELECT * FROM Customers" + repeated(", Customers c", 1)), Errors{});
}

TEST(Limits, TooManyTablesAreError106)
{
    std::string sql = "SELECT 1 FROM (SELECT 1 AS a) t0";
    for (int i = 1; i < 300; ++i)
        sql += " CROSS JOIN (SELECT 1 AS a) t" + std::to_string(i);
    EXPECT_EQ(errorsOf(sql), Errors{106});
}

TEST(Limits, CommonTablesThatDoubleAreError701)
{
    std::string sql = "WITH c0 AS (SELECT 1 AS x)";
    for (int i = 1; i < 30; ++i) {
        const std::string before = std::to_string(i - 1);
        sql += ", c" + std::to_string(i) + " AS (SELECT a.x FROM c" + before + " a CROSS JOIN c" + before +
               " b)";
    }
    EXPECT_EQ(errorsOf(sql + " SELECT COUNT(*) FROM c29"), Errors{701});
}

TEST(Limits, TooLongValuesAreError701)
{
    EXPECT_EQ(errorsOf("SELECT LEN(REPLICATE(CAST('x' AS varchar(max)), 2147483647))"), Errors{701});
    EXPECT_EQ(errorsOf("DECLARE @v varchar(max) = REPLICATE(CAST('x' AS varchar(max)), 200000000) "
                       "SET @v = @v + @v"),
              Errors{701});
}

TEST(Limits, TooDeepNestingIsError191)
{
    EXPECT_EQ(errorsOf("SELECT " + repeated("(", 20'000) + "1" + repeated(")", 20'000)), Errors{191});
    EXPECT_EQ(errorsOf("SELECT 1 WHERE 1=1" + repeated(" AND 1=1", 20'000)), Errors{191});
}
