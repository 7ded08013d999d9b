#include "Foundation/KNChangeNotifier.h"
#include "Foundation/KNUserDefaults.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/ResultTesting.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNExportDialog.h"
#include "UI/Results/KNNoticeBar.h"
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultExportBar.h"
#include "UI/Results/KNResultFilterBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultTabs.h"
#include "UI/Results/KNResultsPane.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QShortcut>
#include <QTabBar>
#include <QTemporaryDir>
#include <QToolButton>

#include <thread>

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

/// A pane on the screen that watches a run.
class Pane
{
public:
    explicit Pane(const QList<KNDatabaseResultSetPtr> &results = {})
    {
        pane.setShowsTabs(false);
        pane.resize(800, 600);
        pane.show();
        QApplication::setActiveWindow(&pane);
        QObject::connect(&pane, &KNResultsPane::rowCountChanged, &pane,
                         [this](qint64 count) { told = count; });
        holder->setChangeObserver(changes.trigger());
        for (const KNDatabaseResultSetPtr &each : results)
            holder->append(each);
        pane.beginRun(holder, FakeDatabase::Settings(m_server));
        if (!results.isEmpty())
            pane.finishRun();
    }

    QString clipboardAfter(const std::function<void()> &copies)
    {
        QGuiApplication::clipboard()->setText(QStringLiteral("before"));
        copies();
        EXPECT_TRUE(waitFor([&] { return !pane.currentSection()->copier()->isCopying(); }));
        return QGuiApplication::clipboard()->text();
    }

    KNResultsPane pane;
    KNChangeNotifier changes{[this] { pane.showNewResults(); }};
    std::shared_ptr<KNResultSetHolder> holder = std::make_shared<KNResultSetHolder>();
    qint64 told = -1;

private:
    FakeDatabase::Server m_server;
};

/// Requests an export and accepts its dialog.
void exportResult(KNResultsPane &pane)
{
    Q_EMIT pane.section(0)->exportRequested();
    auto *const dialog = pane.findChild<KNExportDialog *>();
    ASSERT_NE(dialog, nullptr);
    dialog->endSheetWithReturnCode(1);
    delete dialog;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

} // namespace

TEST(ResultsPane, ShowsRowsWhileTheyArrive)
{
    Pane shown;
    const auto result = std::make_shared<KNDatabaseResultSet>();
    shown.holder->append(result);
    result->setColumns({QStringLiteral("a")}, {56});
    result->addRows({{KNValue(1)}});
    ASSERT_TRUE(waitFor([&] { return shown.told == 1; }));
    EXPECT_EQ(shown.pane.section(0)->caption(), QStringLiteral("Result 1: 1 row so far"));
    result->addRows({{KNValue(2)}, {KNValue(3)}});
    ASSERT_TRUE(waitFor([&] { return shown.told == 3; }));
    result->setFinished();
    shown.pane.finishRun();
    EXPECT_EQ(shown.pane.rowCount(), 3);
    EXPECT_EQ(shown.pane.section(0)->caption(), QStringLiteral("Result 1: 3 rows"));
}

TEST(ResultsPane, ShowsNothingForAResultWithoutColumns)
{
    const Pane shown({result({}, {}), numberedRows(2), result({}, {})});
    EXPECT_EQ(shown.pane.resultCount(), 1);
    EXPECT_EQ(shown.pane.rowCount(), 2);
}

TEST(ResultsPane, ShowsColumnsOfAResultWithoutRows)
{
    Pane shown({result({QStringLiteral("a")}, {})});
    EXPECT_EQ(shown.pane.resultCount(), 1);
    EXPECT_EQ(shown.pane.section(0)->caption(), QStringLiteral("Result 1: 0 rows"));
}

TEST(ResultsPane, LetsRowsOfALostRunBeSorted)
{
    Pane shown;
    const auto result = std::make_shared<KNDatabaseResultSet>();
    shown.holder->append(result);
    result->setColumns({QStringLiteral("a")}, {56});
    result->addRows({{KNValue(1)}});
    shown.pane.finishRun();
    EXPECT_TRUE(shown.pane.section(0)->model().isFinished());
}

TEST(ResultsPane, RemovesPreviousRun)
{
    Pane shown({numberedRows(5)});
    shown.pane.clear();
    EXPECT_EQ(shown.pane.rowCount(), 0);
    EXPECT_EQ(shown.told, 0);
    EXPECT_EQ(shown.pane.resultCount(), 0);
    EXPECT_EQ(shown.pane.sectionCount(), 0);
    EXPECT_EQ(shown.pane.currentSection(), nullptr);
}

TEST(ResultsPane, MakesFewWidgetsForManyResults)
{
    for (const bool asTabs : {false, true}) {
        Pane shown;
        shown.pane.setShowsTabs(asTabs);
        for (int i = 0; i < 1000; ++i)
            shown.holder->append(numberedRows(3));
        shown.pane.finishRun();
        EXPECT_EQ(shown.pane.resultCount(), 1000);
        EXPECT_EQ(shown.pane.rowCount(), 3000);
        EXPECT_LT(shown.pane.sectionCount(), 20);
        EXPECT_LT(shown.pane.findChildren<QWidget *>().size(), 1000);
        if (!asTabs) {
            auto *const bar = shown.pane.findChild<QAbstractScrollArea *>()->verticalScrollBar();
            bar->setValue(bar->maximum());
            EXPECT_TRUE(shown.pane.section(999)->isVisible());
            EXPECT_LT(shown.pane.sectionCount(), 20);
        } else {
            shown.pane.tabs()->setCurrent(999);
            EXPECT_TRUE(shown.pane.section(999)->isVisible());
            EXPECT_LT(shown.pane.sectionCount(), 20);
        }
    }
}

TEST(ResultsPane, RemembersWhetherResultsAreTabs)
{
    Pane shown({numberedRows(3), numberedRows(4)});
    EXPECT_FALSE(shown.pane.showsTabs());
    EXPECT_TRUE(shown.pane.section(0)->isVisible());
    EXPECT_TRUE(shown.pane.section(1)->isVisible());
    shown.pane.section(1)->grid()->horizontalHeader()->resizeSection(0, 231);
    shown.pane.setShowsTabs(true);
    EXPECT_TRUE(shown.pane.section(0)->isVisible());
    EXPECT_EQ(shown.pane.currentSection(), shown.pane.section(0));
    shown.pane.findChild<QTabBar *>()->setCurrentIndex(1);
    EXPECT_TRUE(shown.pane.section(1)->isVisible());
    EXPECT_EQ(shown.pane.section(1)->grid()->horizontalHeader()->sectionSize(0), 231);
    EXPECT_TRUE(KNResultsPane().showsTabs());
    shown.pane.setShowsTabs(false);
    EXPECT_FALSE(KNResultsPane().showsTabs());
}

TEST(ResultSection, CopiesSelection)
{
    Pane shown({result({QStringLiteral("id"), QStringLiteral("name")},
                       {{KNValue(1), text("x")}, {KNValue(2), KNValue()}})});
    KNResultSection &section = *shown.pane.section(0);
    section.grid()->setFocus();
    section.grid()->selectAll();
    const auto press = [&](Qt::KeyboardModifiers modifiers) {
        return shown.clipboardAfter([&] { QTest::keyClick(section.grid(), Qt::Key_C, modifiers); });
    };
    EXPECT_EQ(press(Qt::ControlModifier), QStringLiteral("1\tx\n2\tNULL"));
    EXPECT_EQ(press(Qt::ControlModifier | Qt::ShiftModifier), QStringLiteral("id\tname\n1\tx\n2\tNULL"));
    EXPECT_EQ(shown.clipboardAfter([&] { section.copySelection(QStringLiteral("insert")); }),
              QStringLiteral(
                  "INSERT INTO table_name (\"id\", \"name\") VALUES\r\n\t(1, 'x'),\r\n\t(2, NULL);\r\n"));
    EXPECT_EQ(shown.clipboardAfter([&] { QMetaObject::invokeMethod(section.grid(), "copy"); }),
              QStringLiteral("1\tx\n2\tNULL"));
    section.grid()->selectColumn(0, QItemSelectionModel::ClearAndSelect);
    EXPECT_EQ(shown.clipboardAfter([&] { section.copySelection(QStringLiteral("in-list")); }),
              QStringLiteral("(1, 2)"));
    section.grid()->clearSelection();
    EXPECT_EQ(press(Qt::ControlModifier), QStringLiteral("before")) << "nothing is selected";
}

TEST(ResultSection, SortsByDoubleClicksOnAHeader)
{
    Pane shown({numberedRows(100)});
    KNResultSection &section = *shown.pane.section(0);
    const auto doubleClick = [&] {
        const QPoint header(section.grid()->horizontalHeader()->sectionViewportPosition(0) + 15, 5);
        QTest::mouseDClick(section.grid()->horizontalHeader()->viewport(), Qt::LeftButton, {}, header);
        EXPECT_TRUE(waitFor([&] { return !section.model().isArranging(); }));
        return section.model().cell(0, 0).text + QLatin1Char('|') + section.caption();
    };
    EXPECT_EQ(doubleClick(), QStringLiteral("0|Result 1: 100 rows, sorted by id"));
    EXPECT_EQ(doubleClick(), QStringLiteral("99|Result 1: 100 rows, sorted by id (descending)"));
    EXPECT_EQ(doubleClick(), QStringLiteral("0|Result 1: 100 rows"));
}

TEST(ResultSection, FiltersByTypedTextAndEscapeShowsAllRows)
{
    Pane shown({numberedRows(100)});
    KNResultSection &section = *shown.pane.section(0);
    section.grid()->setFocus();
    EXPECT_FALSE(section.filterBar()->isVisible());
    QTest::keyClick(section.grid(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(section.filterBar()->isVisible());
    QTest::keyClicks(section.filterBar()->field(), QStringLiteral("row 9"));
    ASSERT_TRUE(waitFor([&] { return section.model().rowCount() == 11; }));
    EXPECT_EQ(section.caption(), QStringLiteral("Result 1: 11 of 100 rows"));
    EXPECT_EQ(shown.pane.rowCount(), 100);
    int cancels = 0;
    QShortcut cancel(QKeySequence(Qt::Key_Escape), &shown.pane);
    QObject::connect(&cancel, &QShortcut::activated, &shown.pane, [&] { ++cancels; });
    QTest::keyClick(section.filterBar()->field(), Qt::Key_Escape);
    EXPECT_EQ(cancels, 0);
    EXPECT_EQ(section.model().rowCount(), 100);
    EXPECT_FALSE(section.filterBar()->isVisible());
    EXPECT_TRUE(section.grid()->hasFocus());
}

TEST(ResultSection, CannotBeFilteredWhileRowsArrive)
{
    Pane shown;
    const auto result = std::make_shared<KNDatabaseResultSet>();
    shown.holder->append(result);
    result->setColumns({QStringLiteral("a")}, {56});
    result->addRows({{KNValue(1)}});
    ASSERT_TRUE(waitFor([&] { return shown.told == 1; }));
    shown.pane.section(0)->openFilter();
    EXPECT_FALSE(shown.pane.section(0)->filterBar()->isVisible());
}

TEST(ResultExport, WritesTheShownRowsToAFile)
{
    const QTemporaryDir folder;
    RecordingFilePanels &panels = RecordingFilePanels::install();
    panels.answer = {folder.filePath(QStringLiteral("a.csv"))};
    Pane shown({numberedRows(100)});
    KNResultSection &section = *shown.pane.section(0);
    section.model().arrange({.filterText = QStringLiteral("row 99")});
    ASSERT_TRUE(waitFor([&] { return !section.model().isArranging(); }));
    exportResult(shown.pane);
    EXPECT_TRUE(shown.pane.exportBar()->isExporting());
    EXPECT_TRUE(shown.pane.exportBar()->isVisible());
    ASSERT_TRUE(waitFor([&] { return !shown.pane.exportBar()->isExporting(); }));
    EXPECT_FALSE(shown.pane.exportBar()->isVisible());
    EXPECT_EQ(contents(panels.answer.first()), QByteArray("id,name\n99,row 99\n"));
    EXPECT_EQ(panels.requests.at(0).filters.size(), 3);
}

TEST(ResultExport, IsCancelledWithoutATrace)
{
    const QTemporaryDir folder;
    RecordingAlerts &alerts = RecordingAlerts::install();
    RecordingFilePanels::install().answer = {folder.filePath(QStringLiteral("a.xlsx"))};
    Pane shown({numberedRows(500'000)});
    exportResult(shown.pane);
    shown.pane.exportBar()->cancel();
    ASSERT_TRUE(waitFor([&] { return !shown.pane.exportBar()->isExporting(); }));
    EXPECT_TRUE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).isEmpty());
    EXPECT_TRUE(alerts.errors.empty());
}

TEST(ResultExport, ReportsErrorsAndLossesOfFormat)
{
    const QTemporaryDir folder;
    RecordingAlerts &alerts = RecordingAlerts::install();
    RecordingFilePanels &panels = RecordingFilePanels::install();
    panels.answer = {QStringLiteral("/nonexistent/a.csv")};
    Pane shown({result({QStringLiteral("a")}, {{KNValue(std::numeric_limits<qint64>::max())}})});
    exportResult(shown.pane);
    ASSERT_TRUE(waitFor([&] { return alerts.errors.size() == 1; }));
    panels.answer = {folder.filePath(QStringLiteral("a.xlsx"))};
    exportResult(shown.pane);
    ASSERT_TRUE(waitFor([&] { return shown.pane.noticeBar()->isVisible(); }));
    EXPECT_TRUE(shown.pane.noticeBar()->text().startsWith(
        QStringLiteral("1 row written to a.xlsx. One number is text")))
        << shown.pane.noticeBar()->text().toStdString();
    EXPECT_TRUE(alerts.messages.empty());
}

TEST(ResultExport, SaysWhatWasWrittenAndOpensTheFolder)
{
    const QTemporaryDir folder;
    RecordingFilePanels::install().answer = {folder.filePath(QStringLiteral("a.csv"))};
    Pane shown({numberedRows(1234)});
    exportResult(shown.pane);
    ASSERT_TRUE(waitFor([&] { return shown.pane.noticeBar()->isVisible(); }));
    EXPECT_EQ(shown.pane.noticeBar()->text(), QStringLiteral("1,234 rows written to a.csv."));
    EXPECT_EQ(shown.pane.noticeBar()->button()->text(), QStringLiteral("Open Folder"));
    EXPECT_EQ(namelessWidgets(shown.pane), QStringList());
    const RecordingFileManager &fileManager = RecordingFileManager::install();
    shown.pane.noticeBar()->button()->click();
    EXPECT_EQ(fileManager.files, QStringList{folder.filePath(QStringLiteral("a.csv"))});
    KNFileManager::setShared(nullptr);
    shown.pane.clear();
    EXPECT_FALSE(shown.pane.noticeBar()->isVisible());
}

TEST(ResultExport, SaysThatHiddenColumnsAreWritten)
{
    const QTemporaryDir folder;
    RecordingFilePanels &panels = RecordingFilePanels::install();
    panels.answer = {folder.filePath(QStringLiteral("a.csv"))};
    Pane shown({numberedRows(2)});
    shown.pane.section(0)->grid()->columns()->hide(0);
    Q_EMIT shown.pane.section(0)->exportRequested();
    auto *const dialog = shown.pane.findChild<KNExportDialog *>();
    EXPECT_EQ(dialog->summary(),
              QStringLiteral("2 rows and all 2 columns are written, also the hidden one."));
    EXPECT_EQ(namelessWidgets(*dialog), QStringList());
    dialog->endSheetWithReturnCode(1);
    ASSERT_TRUE(waitFor([&] { return shown.pane.noticeBar()->isVisible(); }));
    EXPECT_EQ(contents(panels.answer.first()), QByteArray("id,name\n0,row 0\n1,row 1\n"));
}

TEST(ResultExport, RemembersFormatAndCsvOptions)
{
    const CsvOptions before = CsvOptions::remembered();
    const ResultRows rows{numberedRows(1), nullptr, {{0, 1}}, {0, 1}};
    KNExportDialog first(rows, 0, nullptr);
    EXPECT_EQ(first.summary(), QStringLiteral("1 row and all 2 columns are written."));
    EXPECT_EQ(first.csvOptions(), CsvOptions());
    for (QComboBox *const box : first.findChildren<QComboBox *>()) {
        if (box->accessibleName() == QLatin1String("Separator"))
            box->setCurrentText(QStringLiteral("Tab"));
        if (box->accessibleName() == QLatin1String("Encoding"))
            box->setCurrentText(QStringLiteral("UTF-16"));
    }
    for (QCheckBox *const box : first.findChildren<QCheckBox *>())
        box->toggle();
    first.findChild<QLineEdit *>()->setText(QStringLiteral("\\N"));
    first.remember();
    const CsvOptions expected = {.separator = '\t',
                                 .quotesAlways = true,
                                 .encoding = CsvOptions::Encoding::Utf16,
                                 .hasByteOrderMark = true,
                                 .hasHeader = false,
                                 .nullText = QStringLiteral("\\N")};
    EXPECT_EQ(CsvOptions::remembered(), expected);
    EXPECT_EQ(KNExportDialog(rows, 0, nullptr).csvOptions(), expected);
    EXPECT_EQ(first.extension(), QStringLiteral("csv"));
    before.remember();
}

TEST(ResultSection, TellsWhichColumnsACopyLacks)
{
    RecordingAlerts &alerts = RecordingAlerts::install();
    Pane shown({result({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")},
                       {{KNValue(1), KNValue(2), KNValue(3)}})});
    KNResultSection &section = *shown.pane.section(0);
    section.grid()->columns()->hide(1);
    section.grid()->selectAll();
    EXPECT_EQ(shown.clipboardAfter([&] { section.copySelection(QStringLiteral("text")); }),
              QStringLiteral("1\t3"));
    EXPECT_EQ(shown.pane.noticeBar()->text(), QStringLiteral("1 row copied. A hidden column was left out."));
    EXPECT_TRUE(alerts.messages.empty());
}

TEST(ResultsPane, IsFreeWhileAMillionRowsStreamIn)
{
    Pane shown;
    const auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({QStringLiteral("id"), QStringLiteral("name")}, {56, 47});
    shown.holder->append(result);
    constexpr int Count = 1'000'000;
    std::thread writer([&] {
        for (int row = 0; row < Count; ++row) {
            result->rows().beginRow();
            result->rows().appendInt32(row);
            result->rows().appendText("some text", 9);
            result->rows().endRow();
            if (row % 100 == 99)
                shown.holder->incrementTotalResultCountBy(result->rows().publish());
        }
        shown.holder->incrementTotalResultCountBy(result->rows().publish());
        result->setFinished();
    });
    WatchedApplication::instance().beginWatch();
    EXPECT_TRUE(waitFor([&] { return shown.told == Count; }));
    writer.join();
    shown.pane.finishRun();
    const auto &longest = WatchedApplication::instance().longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
}

TEST(ResultsPane, SaysWhyItIsEmpty)
{
    KNResultsPane unused;
    EXPECT_EQ(unused.emptyText(), QStringLiteral("Run a query with F5 to see its results here."));
    Pane running;
    EXPECT_EQ(running.pane.emptyText(), QStringLiteral("Waiting for results…"));
    running.pane.finishRun();
    EXPECT_EQ(running.pane.emptyText(),
              QStringLiteral("The query returned no result set. Its messages are under Messages."));
    for (const bool asTabs : {false, true}) {
        Pane shown({numberedRows(3)});
        shown.pane.setShowsTabs(asTabs);
        EXPECT_EQ(shown.pane.emptyText(), QString());
        EXPECT_TRUE(shown.pane.section(0)->grid()->isVisible());
        shown.pane.clear();
        EXPECT_EQ(shown.pane.emptyText(), unused.emptyText());
        shown.pane.setShowsTabs(false);
    }
}

TEST(ResultGrid, SaysWhyItIsEmpty)
{
    Pane shown({result({QStringLiteral("a")}, {}), numberedRows(10)});
    EXPECT_EQ(shown.pane.section(0)->grid()->emptyText(), QStringLiteral("The result has no rows."));
    KNResultSection &filtered = *shown.pane.section(1);
    EXPECT_EQ(filtered.grid()->emptyText(), QString());
    ASSERT_TRUE(filtered.model().arrange({.filterText = QStringLiteral("zzz")}));
    ASSERT_TRUE(waitFor([&] { return !filtered.model().isArranging(); }));
    EXPECT_EQ(filtered.grid()->emptyText(),
              QStringLiteral("No row matches the filter. \"Show All Rows\" removes it."));
}
