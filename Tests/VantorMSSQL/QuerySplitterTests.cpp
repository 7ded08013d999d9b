#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "SQL/KNQuerySplitter.h"

#include "Foundation/MachTimer.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

QList<KNQueryDetails> splitText(const QString &text, bool full = true)
{
    const auto splitter = MSSQLDatabaseConnectionDetails().createQuerySplitter();
    splitter->setRequiresFullSplit(full);
    return splitter->doSplitQuery(text);
}

QStringList queries(const char *text)
{
    QStringList texts;
    const auto batches = splitText(QString::fromUtf8(text));
    for (const KNQueryDetails &batch : batches)
        texts.append(batch.targetQuery);
    return texts;
}

QStringList list(std::initializer_list<const char *> texts)
{
    QStringList result;
    for (const char *text : texts)
        result.append(QString::fromUtf8(text));
    return result;
}

/// Processor seconds of this thread.
double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

} // namespace

TEST(QuerySplitter, CutsAtALineWithGo)
{
    const QString text = QStringLiteral("SELECT 1\r\nGO\r\n\r\nSELECT 2\r\n");
    const auto batches = splitText(text);
    ASSERT_EQ(batches.size(), 2);
    EXPECT_EQ(batches[0].targetQuery, QStringLiteral("SELECT 1"));
    EXPECT_EQ(batches[0].queryRange, (KNRange{0, 8}));
    EXPECT_EQ(batches[0].lineNumberOffset, 0U);
    EXPECT_EQ(batches[1].targetQuery, QStringLiteral("SELECT 2"));
    EXPECT_EQ(batches[1].queryRange, (KNRange{16, 10}));
    EXPECT_EQ(batches[1].lineNumberOffset, 3U);
    EXPECT_EQ(batches[1].repeatCount, 1U);
}

TEST(QuerySplitter, TakesGoInAnyCaseAndWithWhiteSpaceAroundIt)
{
    EXPECT_EQ(queries("a\ngo\nb"), list({"a", "b"}));
    EXPECT_EQ(queries("a\n\t Go \t\nb"), list({"a", "b"}));
    EXPECT_EQ(queries("a\ngO"), list({"a"}));
}

TEST(QuerySplitter, LeavesNoRecordForAnEmptyBatch)
{
    EXPECT_EQ(queries("GO\nGO\n\nSELECT 1\nGO\n  \nGO\n"), list({"SELECT 1"}));
    EXPECT_TRUE(splitText(QString()).isEmpty());
    EXPECT_TRUE(splitText(QStringLiteral(" \r\n\t")).isEmpty());
}

TEST(QuerySplitter, AnEmptyBatchStillCountsItsLines)
{
    const auto batches = splitText(QStringLiteral("GO\n\nGO\n  x"));
    ASSERT_EQ(batches.size(), 1);
    EXPECT_EQ(batches[0].lineNumberOffset, 3U);
    EXPECT_EQ(batches[0].queryRange, (KNRange{9, 1}));
}

TEST(QuerySplitter, TakesACountAndAComment)
{
    const auto batches =
        splitText(QStringLiteral("a\nGO 5\nb\nGO 3 -- thrice\nc\nGO -- once\nd\nGO/* x */ 2\ne"));
    ASSERT_EQ(batches.size(), 5);
    const QList<quint32> counts = {5, 3, 1, 2, 1};
    for (qsizetype i = 0; i < batches.size(); ++i)
        EXPECT_EQ(batches[i].repeatCount, counts[i]) << i;
    EXPECT_EQ(batches[4].lineNumberOffset, 8U);
}

TEST(QuerySplitter, GoWithACountOfZeroRunsNothing)
{
    EXPECT_EQ(queries("a\nGO 0\nb"), list({"b"}));
}

TEST(QuerySplitter, IgnoresTextThatOnlyResemblesGo)
{
    for (const char *text : {"GOTO done", "gone_ts", "GO;", "GO x", "GO 5 6", "GO 5x", "GO 1.5", "GO -1",
                             "GO 0x5", "GO 99999999999", "SELECT 1 GO", "@GO", "#GO", "GO.x", "[GO]",
                             "\"GO\"", "GO /* not closed\n*/ here", "-- GO", "a, GO"})
        EXPECT_EQ(queries(text), list({text}));
}

TEST(QuerySplitter, KeepsGoInsideTextAndCommentsWhole)
{
    for (const char *text :
         {"SELECT '\nGO\n'", "SELECT 'it''s\nGO\n'", "SELECT N'\nGO\n'", "SELECT \"a\"\"\nGO\n\"",
          "SELECT [a]]\nGO\n]", "/*\nGO\n*/ x", "/* /* */\nGO\n*/ x", "-- '\nx", "SELECT '\nGO"})
        EXPECT_EQ(queries(text), list({text}));
}

TEST(QuerySplitter, CommentsNestAsTheyDoOnTheServer)
{
    EXPECT_EQ(queries("/* a /* b */ \nGO\n */ 1\nGO\n2"), list({"/* a /* b */ \nGO\n */ 1", "2"}));
}

TEST(QuerySplitter, AClosedCommentMayStandBeforeGo)
{
    EXPECT_EQ(queries("a\n/* end */ GO\nb"), list({"a\n/* end */", "b"}));
    EXPECT_EQ(queries("a /*\n*/ GO\nb"), list({"a /*\n*/ GO\nb"}));
}

TEST(QuerySplitter, AQuoteInACommentOpensNothing)
{
    EXPECT_EQ(queries("-- don't\nGO\nx"), list({"-- don't", "x"}));
    EXPECT_EQ(queries("/* don't [ */\nGO\nx"), list({"/* don't [ */", "x"}));
}

TEST(QuerySplitter, TakesTheLineEndsOfAllSystems)
{
    EXPECT_EQ(queries("a\rGO\rb"), list({"a", "b"}));
    EXPECT_EQ(queries("a\r\nGO\r\nb"), list({"a", "b"}));
    EXPECT_EQ(queries("a\nGO\nb"), list({"a", "b"}));
    EXPECT_EQ(queries("-- x\rGO\ry"), list({"-- x", "y"}));
}

TEST(QuerySplitter, AByteOrderMarkBelongsToNoBatch)
{
    const auto batches = splitText(QStringLiteral("\uFEFFGO\nSELECT 1"));
    ASSERT_EQ(batches.size(), 1);
    EXPECT_EQ(batches[0].targetQuery, QStringLiteral("SELECT 1"));
    EXPECT_EQ(queries("\xEF\xBB\xBFSELECT 1"), list({"SELECT 1"}));
}

TEST(QuerySplitter, EveryRangeHoldsItsBatch)
{
    const QString text = QStringLiteral("\U0001F600 a\n GO 2\n\tb 'x\nGO\n'  \nGO\n--\nGO\n");
    const auto batches = splitText(text);
    ASSERT_EQ(batches.size(), 3);
    for (const KNQueryDetails &batch : batches) {
        const QString part = text.mid(batch.queryRange.location, batch.queryRange.length);
        EXPECT_EQ(part.trimmed(), batch.targetQuery);
        EXPECT_TRUE(part.startsWith(batch.targetQuery));
        EXPECT_EQ(batch.lineNumberOffset,
                  quint64(text.left(batch.queryRange.location).count(QLatin1Char('\n'))));
    }
}

TEST(QuerySplitter, APartialSplitLooksAtTenThousandCharacters)
{
    const QString text = QStringLiteral("SELECT 12\nGO\n").repeated(1539).left(20000);
    EXPECT_EQ(splitText(text, false).size(), 770);
    EXPECT_EQ(splitText(text, true).size(), 1539);
    const QString atLimit = QStringLiteral("x").repeated(10000) + QStringLiteral("\nGO\ny");
    EXPECT_EQ(splitText(atLimit, false).size(), 1);
}

TEST(QuerySplitter, StopsWhenItIsCancelled)
{
    const auto splitter = MSSQLDatabaseConnectionDetails().createQuerySplitter();
    splitter->cancel();
    EXPECT_TRUE(splitter->cancelled());
    EXPECT_TRUE(splitter->doSplitQuery(QStringLiteral("a\nGO\nb")).isEmpty());
}

/// What would make a splitter slow that goes back: many near-separators, many openings, one long batch.
TEST(QuerySplitter, TakesTimeInProportionToTheText)
{
    for (const char *piece :
         {"GO x\n", "GO /*\n*/ x\n", "[\n", "'\nGO\n", "/* /*\n", "a\nGO\n", "GO 1 2\n", " \n"}) {
        const QString text = QString::fromLatin1(piece).repeated(20000);
        double begin = processorTime();
        splitText(text);
        const double once = processorTime() - begin;
        begin = processorTime();
        splitText(text.repeated(10));
        EXPECT_LT(processorTime() - begin, 30 * once + 0.05) << piece;
    }
}
