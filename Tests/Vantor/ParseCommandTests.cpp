#include "Vantor/Program.h"

namespace {

Outcome parseScript(const char *text, const QStringList &options = {})
{
    const QString server = QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port());
    return Program(QStringList{QStringLiteral("parse"), QStringLiteral("-"), QStringLiteral("--server"),
                               server, QStringLiteral("--user"), QStringLiteral("sa"),
                               QStringLiteral("--database"), QStringLiteral("shop")} +
                       options,
                   text)
        .wait();
}

} // namespace

TEST(ParseCommand, SaysThatAScriptIsCorrectWithoutRunningIt)
{
    const Outcome outcome = parseScript("DROP TABLE Orders\nGO\nSELECT * FROM Nowhere\n");
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_EQ(outcome.output, "The statements are correct.\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(ParseCommand, PrintsErrorsWithTheirLinesInTheFile)
{
    const Outcome outcome = parseScript("SELECT 1\nGO\n\nSELECT FROM WHERE\nGO\nUPDATE SET\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errors.contains("Line 4")) << outcome.errors.toStdString();
    EXPECT_TRUE(outcome.errors.contains("Line 6")) << outcome.errors.toStdString();
}

TEST(ParseCommand, FailsForABatchThatItCannotCheck)
{
    const Outcome outcome = parseScript("SET PARSEONLY OFF DELETE FROM Orders\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errors.contains("line 1")) << outcome.errors.toStdString();
}

TEST(ParseCommand, NeedsAFileAndAServer)
{
    EXPECT_EQ(Program({QStringLiteral("parse"), QStringLiteral("--sample")}).wait().status, 2);
    EXPECT_EQ(Program({QStringLiteral("parse"), QStringLiteral("-")}, "SELECT 1").wait().status, 2);
    EXPECT_EQ(parseScript("SELECT 1", {QStringLiteral("--nonsense")}).status, 2);
}
