#include "Foundation/KNChangeNotifier.h"
#include "Support/RecordingAlerts.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QClipboard>

#include <thread>

using namespace WindowTesting;

namespace {

/// A pane that shows what a client of the sample server is given.
class ServerPane
{
public:
    ServerPane()
        : client(WireTest::connectedClient())
    {
        pane.setShowsTabs(false);
        pane.resize(800, 600);
        pane.show();
    }

    /// Runs a text in the background while the pane shows what comes.
    void run(const QString &sql)
    {
        const auto holder = std::make_shared<KNResultSetHolder>();
        const KNChangeNotifier changes([this] { pane.showNewResults(); });
        holder->setChangeObserver(changes.trigger());
        std::atomic<bool> isDone = false;
        pane.beginRun(holder, client->databaseConnectionDetails());
        std::thread worker([&] {
            KNError error;
            EXPECT_TRUE(client->executeQueryDetails({{sql, {0, sql.size()}, 0}}, *holder, {}, &error))
                << error.localizedDescription().toStdString();
            isDone = true;
        });
        EXPECT_TRUE(waitFor([&] { return isDone.load(); }));
        worker.join();
        pane.finishRun();
    }

    QString shown(int result, int row, int column)
    {
        return pane.section(result)->model().cell(row, column).text;
    }

    std::unique_ptr<MSSQLClient> client;
    KNResultsPane pane;
};

} // namespace

TEST(ResultStreaming, LeavesThePaneFreeWhileTwoHundredThousandRowsArrive)
{
    ServerPane server;
    WatchedApplication::instance().beginWatch();
    server.run(QStringLiteral("SELECT * FROM generate_rows(200000)"));
    EXPECT_EQ(server.pane.rowCount(), 200'000);
    EXPECT_EQ(server.pane.resultCount(), 1);
    EXPECT_TRUE(server.pane.section(0)->model().isFinished());
    const auto &longest = WatchedApplication::instance().longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
}

TEST(ResultStreaming, ShowsDatesByTheTypesOfTheirColumns)
{
    ServerPane server;
    server.run(QStringLiteral("SELECT CAST('2024-02-29T13:45:07.123' AS datetime), "
                              "CAST('13:45:07.1234567' AS time), CAST('2024-02-29' AS date), "
                              "CAST(NULL AS date)"));
    EXPECT_EQ(server.shown(0, 0, 0), QStringLiteral("2024-02-29 13:45:07:123"));
    EXPECT_EQ(server.shown(0, 0, 1), QStringLiteral("13:45:07:123"));
    EXPECT_EQ(server.shown(0, 0, 2), QStringLiteral("2024-02-29"));
    EXPECT_TRUE(server.pane.section(0)->model().cell(0, 3).isNull);
}

TEST(ResultStreaming, ShowsEachResultOfABatchThatHasColumns)
{
    ServerPane server;
    server.run(QStringLiteral("SELECT 1 AS a; CREATE TABLE #t (id int); INSERT INTO #t VALUES (1), (2); "
                              "SELECT id FROM #t; DROP TABLE #t"));
    EXPECT_EQ(server.pane.resultCount(), 2);
    EXPECT_EQ(server.pane.rowCount(), 3);
    EXPECT_EQ(server.shown(1, 1, 0), QStringLiteral("2"));
}

TEST(ResultStreaming, CopiesInsertsThatGiveTheSameRowsAgain)
{
    ServerPane server;
    const QString create = QStringLiteral("CREATE TABLE #t ([select] int, [a]]b] nvarchar(50), [c.d] "
                                          "varbinary(10), e datetime, f date, g decimal(9,3), "
                                          "h bit)\n");
    const QString query = QStringLiteral("SELECT * FROM #t ORDER BY [select]");
    server.run(create +
               QStringLiteral("INSERT INTO #t VALUES (1, N'O''Brien 🐘', 0x00FF, '2024-02-29T13:45:07.123', "
                              "'2024-02-29', 12.500, 1), (2, 'NULL', NULL, NULL, NULL, NULL, NULL)\n") +
               query);
    const auto rows = [&] {
        const KNRowStore &store = server.pane.section(0)->model().result()->rows();
        return QList<KNRow>{store.row(0), store.row(1)};
    };
    const QList<KNRow> before = rows();
    ASSERT_EQ(server.pane.rowCount(), 2);
    server.pane.section(0)->grid()->selectAll();
    server.pane.section(0)->copySelection(QStringLiteral("insert"));
    ASSERT_TRUE(waitFor([&] { return !server.pane.section(0)->copier()->isCopying(); }));
    const QString inserts =
        QGuiApplication::clipboard()->text().replace(QLatin1String("table_name"), QLatin1String("#t"));
    server.run(QStringLiteral("DELETE FROM #t\n") + inserts + query);
    ASSERT_EQ(server.pane.rowCount(), 2) << inserts.toStdString();
    EXPECT_EQ(rows(), before) << inserts.toStdString();
}
