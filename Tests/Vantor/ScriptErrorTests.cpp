#include "CommandLine/QueryOptions.h"
#include "Vantor/Program.h"

#include <gtest/gtest.h>

namespace {

Outcome run(const char *script, const QStringList &options = {})
{
    return Program(QStringList{QStringLiteral("query"), QStringLiteral("--server"),
                               QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()),
                               QStringLiteral("--user"), QStringLiteral("sa"), QStringLiteral("--format"),
                               QStringLiteral("csv")} +
                       options,
                   script, SampleServerFixture::Password)
        .wait();
}

} // namespace

TEST(ScriptErrors, StopAScriptWhereverTheyOccurInABatch)
{
    for (const char *const script :
         {"RAISERROR('no', 16, 1)\nGO\nSELECT 2 AS b\nGO\nSELECT 3 AS c\nGO 2\n",
          "SELECT 1 AS a RAISERROR('no', 16, 1)\nGO\nSELECT 2 AS b\nGO\nSELECT 3 AS c\nGO 2\n"}) {
        const Outcome outcome = run(script);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_FALSE(outcome.output.contains('b')) << outcome.output.toStdString();
        EXPECT_TRUE(outcome.errors.endsWith("\n3 batches were not run.\n")) << outcome.errors.toStdString();
    }
}

TEST(ScriptErrors, DoNotStopAScriptThatContinues)
{
    const Outcome outcome = run("SELECT 1 AS a RAISERROR('no', 16, 1)\nGO\nSELECT 2 AS b\nGO 2",
                                {QStringLiteral("--on-error"), QStringLiteral("continue")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, QByteArray("a\n1\n\nb\n2\n\nb\n2\n"));
    EXPECT_FALSE(outcome.errors.contains("not run")) << outcome.errors.toStdString();
}

TEST(ScriptErrors, HaveAnOptionWithTwoValues)
{
    KNError error;
    const auto parse = [&](const char *value) {
        return QueryOptions::parse(
            {QStringLiteral("--sample"), QStringLiteral("--on-error"), QString::fromLatin1(value)}, &error);
    };
    EXPECT_EQ(parse("stop")->onError, KNOnError::Stop);
    EXPECT_EQ(parse("continue")->onError, KNOnError::Continue);
    EXPECT_FALSE(parse("ignore"));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("ignore")));
    EXPECT_EQ(QueryOptions::parse({QStringLiteral("--sample")}, &error)->onError, KNOnError::Stop);
}

TEST(ScriptErrors, ShowTheirLineWhereverTheyOccur)
{
    const Outcome outcome =
        run("USE shop\nSELECT 1 AS a\nSELECT nope FROM Customers\nGO\nSELECT neither FROM Customers",
            {QStringLiteral("--on-error"), QStringLiteral("continue")});
    const qsizetype first = outcome.errors.indexOf("\n3: SELECT nope FROM Customers\n          ^^^^\n");
    const qsizetype second =
        outcome.errors.indexOf("\n5: SELECT neither FROM Customers\n          ^^^^^^^\n");
    EXPECT_GT(first, 0) << outcome.errors.toStdString();
    EXPECT_GT(second, first) << outcome.errors.toStdString();
}
