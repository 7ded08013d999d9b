#include "Support/SampleServerFixture.h"

#include "WireClient.h"

#include <gtest/gtest.h>

namespace StatementEndTest {

// A DONE is sent for each statement of a batch except variable declarations, a DONEINPROC for each statement
// of a procedure (MS-TDS 2.2.7.6, 2.2.7.7). Control flow has none of its own.

namespace {

using Bytes = WireClient::Bytes;

constexpr std::uint8_t More = 1;

/// The DONE tokens of an answer without columns, as "done", "inproc" and "proc", each with "+" when more
/// follows.
std::string endsOf(const Bytes &answer)
{
    static constexpr const char *names[] = {"done", "proc", "inproc"};
    std::string text;
    for (std::size_t at = 0; at < answer.size();) {
        const std::uint8_t token = answer[at];
        if (token >= 0xFD) {
            text += (text.empty() ? "" : " ") + std::string(names[token - 0xFD]) +
                    ((answer.at(at + 1) & More) != 0 ? "+" : "");
            at += 13;
        } else if (token == 0x79) { // RETURNSTATUS
            at += 5;
        } else if (token == 0xE3 || token == 0xAA || token == 0xAB) { // ENVCHANGE, ERROR, INFO
            at += 3U + (answer.at(at + 1) | answer.at(at + 2) << 8);
        } else {
            return text + " token " + std::to_string(token);
        }
    }
    return text;
}

std::string endsOf(const std::u16string &sql)
{
    WireClient client(SampleServerFixture::shared().port());
    client.login();
    return endsOf(client.batch(sql));
}

} // namespace

TEST(StatementEnd, IsSentForEachSettingOfABatch)
{
    EXPECT_EQ(
        endsOf(u"SET TEXTSIZE 2147483647\r\n"
               u"SET ANSI_NULLS, QUOTED_IDENTIFIER, CONCAT_NULL_YIELDS_NULL, ANSI_WARNINGS, ANSI_PADDING, "
               u"ANSI_NULL_DFLT_ON ON"),
        "done+ done");
}

TEST(StatementEnd, IsSentForStatementsWithoutRows)
{
    EXPECT_EQ(endsOf(u"USE shop"), "done");
    EXPECT_EQ(endsOf(u"BEGIN TRANSACTION ROLLBACK TRANSACTION"), "done+ done");
    EXPECT_EQ(endsOf(u"CREATE TABLE #t (a int) DROP TABLE #t"), "done+ done");
    EXPECT_EQ(endsOf(u"PRINT 'a' RAISERROR('b', 10, 1)"), "done+ done");
}

TEST(StatementEnd, IsNotSentForDeclarationsAndControlFlow)
{
    EXPECT_EQ(endsOf(u"DECLARE @v int SET @v = 1 SELECT @v = 2"), "done+ done");
    EXPECT_EQ(endsOf(u"DECLARE @v int = 0 WHILE @v < 3 BEGIN SET @v += 1 IF @v = 2 BREAK END"), "done+ done");
    EXPECT_EQ(endsOf(u"BEGIN TRY SET NOCOUNT ON END TRY BEGIN CATCH END CATCH"), "done");
}

TEST(StatementEnd, IsSentOnceForAFailedStatement)
{
    EXPECT_EQ(endsOf(u"RAISERROR('b', 16, 1) SET NOCOUNT ON"), "done+ done");
}

TEST(StatementEnd, IsDoneInProcInsideOfAProcedure)
{
    WireClient client(SampleServerFixture::shared().port());
    client.login();
    client.batch(u"USE tempdb");
    client.batch(u"CREATE PROCEDURE dbo.two_settings AS DECLARE @v int SET @v = 1 SET @v = 2");
    EXPECT_EQ(endsOf(client.batch(u"EXEC dbo.two_settings")), "inproc+ inproc+ proc");
    client.batch(u"CREATE PROCEDURE dbo.silent AS SET NOCOUNT ON DECLARE @v int SET @v = 1");
    EXPECT_EQ(endsOf(client.batch(u"EXEC dbo.silent")), "proc");
}

} // namespace StatementEndTest
