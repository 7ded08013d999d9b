#include "QueryLoader/KNQueryReport.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

QString latin(const char *text)
{
    return QString::fromLatin1(text);
}

KNError failure()
{
    return KNError(latin("test"), 229, latin("SELECT was denied.\r\nAsk your administrator."));
}

class TextKeeper : public KNQueryLoaderDelegate
{
public:
    void queryLoaderLoadedQuery(KNQueryLoader &loader, const QString &query) override
    {
        text = query;
        report = loader.report();
    }

    QString text;
    KNQueryReport report;
};

} // namespace

TEST(QueryReport, LeavesATextAloneWhenThereIsNothingToReport)
{
    EXPECT_EQ(KNQueryReport().guardedText(latin("DROP TABLE t\r\nGO\r\n")), latin("DROP TABLE t\r\nGO\r\n"));
    EXPECT_TRUE(KNQueryReport().guardedText(QString()).isNull());
}

TEST(QueryReport, PutsNoticesAsCommentsBeforeTheText)
{
    const KNQueryReport report{{}, 0, {latin("It drops a view."), latin("two\nlines")}};
    EXPECT_EQ(report.guardedText(latin("DROP VIEW v")),
              latin("-- It drops a view.\r\n-- two\r\n-- lines\r\nDROP VIEW v"));
}

TEST(QueryReport, CommentsTheUnsafePartOutWhenTheScriptIsIncomplete)
{
    const QString drop = latin("DROP PROCEDURE p\r\nGO\r\n");
    const KNQueryReport report{failure(), drop.size(), {}};
    EXPECT_EQ(report.guardedText(drop + latin("-- Failed to load.")),
              latin("-- This script is incomplete: SELECT was denied.\r\n-- Ask your administrator.\r\n"
                    "-- What must not run without the missing part is commented out.\r\n"
                    "-- DROP PROCEDURE p\r\n-- GO\r\n-- Failed to load."));
}

TEST(QueryReport, LeavesTheTextOfAFailureWithoutAnUnsafePartAsItIs)
{
    const KNQueryReport report{KNError(latin("test"), 0, latin("cut off")), 0, {}};
    EXPECT_EQ(report.guardedText(latin("INSERT 1")),
              latin("-- This script is incomplete: cut off\r\nINSERT 1"));
    EXPECT_TRUE(report.guardedText(QString()).isNull());
}

TEST(QueryReport, IsThereWhenTheDelegateGetsTheText)
{
    FakeDatabase::Server server;
    const FakeDatabase::Settings settings(server);
    const auto loader = std::make_shared<StaticQueryLoader>(latin("text"), KNQueryReport{failure(), 4, {}});
    loader->setReview([](QString *text, KNQueryReport *report) {
        report->notices.append(latin("seen ") + *text);
        *text += latin(" -- reviewed");
    });
    const auto delegate = std::make_shared<TextKeeper>();
    loader->setDelegate(delegate);
    loader->beginLoadingQuery(settings);
    EXPECT_EQ(delegate->text, latin("text -- reviewed"));
    EXPECT_EQ(delegate->report.failure.code(), 229);
    EXPECT_EQ(delegate->report.notices, QStringList{latin("seen text")});
}
