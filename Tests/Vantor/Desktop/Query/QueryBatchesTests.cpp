#include "Desktop/Query/QueryBatches.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "Vantor/Desktop/DesktopTesting.h"

namespace {

const QString Script = QStringLiteral("select 1\nGO\nselect 2,\n 2\ngo 3\n\n  select 3\nGO\n");

QList<KNQueryDetails> batches(const QueryRequest &request)
{
    return batchesOf(request, *DesktopTesting::settingsFor(SampleServerFixture::shared()));
}

QString batchAt(qsizetype location)
{
    const auto found = batches({.text = Script, .part = QueryRequest::Part::BatchAt, .range = {location, 0}});
    EXPECT_EQ(found.size(), 1);
    return found.isEmpty() ? QString() : found.first().targetQuery;
}

} // namespace

TEST(QueryBatches, OfASelectionHavePlacesAndLinesOfTheWholeText)
{
    const qsizetype begin = Script.indexOf(QStringLiteral(" 2\ngo"));
    const auto found =
        batches({.text = Script, .part = QueryRequest::Part::Range, .range = {begin, Script.size() - begin}});
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].targetQuery, QStringLiteral("2"));
    EXPECT_EQ(found[0].queryRange.location, begin + 1);
    EXPECT_EQ(found[0].lineNumberOffset, 3u);
    EXPECT_EQ(found[0].repeatCount, 3u);
    EXPECT_EQ(found[1].queryRange.location, Script.indexOf(QStringLiteral("select 3")));
    EXPECT_EQ(found[1].lineNumberOffset, 6u);
}

TEST(QueryBatches, TheOneAtThePlaceIsFoundWhereverItStands)
{
    EXPECT_EQ(batchAt(0), QStringLiteral("select 1"));
    EXPECT_EQ(batchAt(Script.indexOf(QStringLiteral("GO"))), QStringLiteral("select 1"));
    EXPECT_EQ(batchAt(Script.indexOf(QStringLiteral("select 2"))), QStringLiteral("select 2,\n 2"));
    EXPECT_EQ(batchAt(Script.indexOf(QStringLiteral("go 3"))), QStringLiteral("select 2,\n 2"));
    EXPECT_EQ(batchAt(Script.size()), QStringLiteral("select 3"));
}

TEST(QueryBatches, ThereAreNoneInATextOfNothing)
{
    EXPECT_TRUE(batches({.text = QStringLiteral(" \n-- \nGO\n").left(2)}).isEmpty());
    EXPECT_TRUE(batches({.text = QString(), .part = QueryRequest::Part::BatchAt, .range = {0, 0}}).isEmpty());
}
