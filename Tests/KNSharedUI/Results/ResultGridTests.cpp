#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNRowNumberBar.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTextDocument>

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

/// A grid on the screen.
class Grid
{
public:
    explicit Grid(const KNDatabaseResultSetPtr &result)
        : model(result, std::make_shared<ResultSetViewControllerHelper>())
        , view(model)
    {
        model.showPublishedRows();
        view.resize(600, 400);
        view.show();
        QApplication::setActiveWindow(&view);
        view.setFocus();
    }

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&view, static_cast<Qt::Key>(key), modifiers);
    }
    QPair<int, int> current() const { return {view.currentIndex().row(), view.currentIndex().column()}; }
    QPoint centre(int row, int column) const { return view.visualRect(model.index(row, column)).center(); }

    KNResultTableModel model;
    KNResultGridView view;
};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int ManyRows = 1'000'000; // sanitizers take ten times as long
#else
constexpr int ManyRows = 10'000'000;
#endif

using Place = QPair<int, int>;
using Ranges = QList<ResultRows::Range>;

} // namespace

TEST(ResultModel, ShowsNullApartFromTextAndNumbersToTheRight)
{
    Grid grid(result({QStringLiteral("a"), QStringLiteral("b")},
                     {{KNValue(), text("NULL")}, {KNValue(5), text("")}, {decimal(u"1.50"), text("5")}}));
    EXPECT_TRUE(grid.model.cell(0, 0).isNull);
    EXPECT_FALSE(grid.model.cell(0, 1).isNull);
    EXPECT_EQ(grid.model.cell(0, 1).text, QStringLiteral("NULL"));
    EXPECT_FALSE(grid.model.cell(1, 1).isNull);
    EXPECT_TRUE(grid.model.cell(1, 0).isNumber);
    EXPECT_TRUE(grid.model.cell(2, 0).isNumber);
    EXPECT_EQ(grid.model.cell(2, 0).text, QStringLiteral("1.50"));
    EXPECT_FALSE(grid.model.cell(2, 1).isNumber);
}

TEST(ResultModel, ShowsTextInOneLine)
{
    Grid grid(result({QStringLiteral("a")}, {{text("one\r\ntwo\nthree\tfour")},
                                             {KNValue(QString(5'000'000, QLatin1Char('x')))},
                                             {KNValue(QByteArray(5'000'000, '\1'))}}));
    EXPECT_EQ(grid.model.cell(0, 0).text, QStringLiteral("one↵two↵three⇥four"));
    const qsizetype longest = ResultSetViewControllerHelper::TruncatedLength + 1;
    EXPECT_EQ(grid.model.cell(1, 0).text.size(), longest);
    EXPECT_TRUE(grid.model.cell(1, 0).text.endsWith(QStringLiteral("…")));
    EXPECT_EQ(grid.model.cell(2, 0).text.size(), longest);
    EXPECT_TRUE(grid.model.cell(2, 0).text.startsWith(QStringLiteral("0x0101")));
}

TEST(ResultModel, FormatsDatesByPreference)
{
    /// Shows dates in a way of its own.
    class Helper : public ResultSetViewControllerHelper
    {
        QString stringForValue(const KNValue &value, qsizetype column, bool allowTruncate) const override
        {
            if (value.kind() == KNValue::Kind::Date)
                return QStringLiteral("a date");
            return ResultSetViewControllerHelper::stringForValue(value, column, allowTruncate);
        }
    };
    const auto dates =
        result({QStringLiteral("a")}, {{KNValue(KNDateTime{.ticks = 1, .fractionDigits = 7})}});
    KNResultTableModel model(dates, std::make_shared<Helper>());
    model.showPublishedRows();
    const KNPreferences before = KNPreferences::current();
    KNPreferences preferences = before;
    preferences.dateFormat = KNPreferences::DateFormat::Milliseconds;
    preferences.save();
    EXPECT_EQ(model.cell(0, 0).text, QStringLiteral("a date"));
    preferences.dateFormat = KNPreferences::DateFormat::AsStored;
    preferences.save();
    EXPECT_EQ(model.cell(0, 0).text, QStringLiteral("1900-01-01 00:00:00.0000001"));
    before.save();
}

TEST(ResultModel, FormatsDatesWithOffsetByPreference)
{
    const KNDateTime date = {.ticks = 5, .fractionDigits = 2, .offsetMinutes = -30};
    Grid grid(result({QStringLiteral("a")}, {{KNValue(date)}}));
    const KNPreferences before = KNPreferences::current();
    KNPreferences preferences = before;
    preferences.dateFormat = KNPreferences::DateFormat::Milliseconds;
    preferences.save();
    EXPECT_EQ(grid.model.cell(0, 0).text, QStringLiteral("1899-12-31 23:30:00:000 +00:30"));
    preferences.dateFormat = KNPreferences::DateFormat::AsStored;
    preferences.save();
    EXPECT_EQ(grid.model.cell(0, 0).text, QStringLiteral("1899-12-31 23:30:00.00 -00:30"));
    before.save();
}

TEST(ResultModel, MarksBytesOfUnknownTypeWithReason)
{
    /// Has something to say about its columns.
    class Helper : public ResultSetViewControllerHelper
    {
        QString remarkForColumn(qsizetype) const override { return QStringLiteral("Use CAST."); }
    };
    const auto bytes = std::make_shared<KNDatabaseResultSet>();
    bytes->setColumns({QStringLiteral("a"), QStringLiteral("b")}, {98, 122});
    bytes->rows().beginRow();
    bytes->rows().appendFlagBytes("\x01\x02", 2);
    bytes->rows().appendFloatMoney(2147483647);
    bytes->rows().endRow();
    bytes->rows().publish();
    bytes->setFinished();
    KNResultTableModel model(bytes, std::make_shared<Helper>());
    model.showPublishedRows();
    EXPECT_EQ(model.cell(0, 0).text, QStringLiteral("0x0102"));
    EXPECT_TRUE(model.cell(0, 0).isMarked);
    EXPECT_EQ(model.index(0, 0).data(Qt::ToolTipRole).toString(), QStringLiteral("Use CAST."));
    EXPECT_EQ(model.cell(0, 1).text, QStringLiteral("214748.3647"));
    EXPECT_FALSE(model.cell(0, 1).isMarked);
    EXPECT_TRUE(model.cell(0, 1).isNumber);
    EXPECT_TRUE(model.index(0, 1).data(Qt::ToolTipRole).isNull());
    EXPECT_TRUE(
        model.headerData(0, Qt::Horizontal, Qt::ToolTipRole).toString().contains(QStringLiteral("CAST")));
}

TEST(ResultModel, ShowsRowsWhenTheyArePublishedAndAsked)
{
    const auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({QStringLiteral("a")}, {56});
    KNResultTableModel model(result, std::make_shared<ResultSetViewControllerHelper>());
    EXPECT_FALSE(model.showPublishedRows());
    result->addRows({{KNValue(1)}, {KNValue(2)}});
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_TRUE(model.showPublishedRows());
    EXPECT_EQ(model.rowCount(), 2);
    EXPECT_FALSE(model.arrange({.sortColumn = 0})) << "rows may still come";
    result->setFinished();
    EXPECT_TRUE(model.showPublishedRows());
    EXPECT_TRUE(model.isFinished());
    EXPECT_FALSE(model.showPublishedRows());
}

TEST(ResultModel, SortsAndFiltersInPlaceAndShowsAllRowsAgain)
{
    Grid grid(numberedRows(1000));
    ASSERT_TRUE(grid.model.arrange({.sortColumn = 0, .sortOrder = Qt::DescendingOrder}));
    EXPECT_TRUE(grid.model.isArranging());
    ASSERT_TRUE(waitFor([&] { return !grid.model.isArranging(); }));
    EXPECT_EQ(grid.model.cell(0, 0).text, QStringLiteral("999"));
    EXPECT_EQ(grid.model.headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(), QStringLiteral("id ▼"));
    ASSERT_TRUE(grid.model.arrange({.filterText = QStringLiteral("99")}));
    ASSERT_TRUE(waitFor([&] { return !grid.model.isArranging(); }));
    EXPECT_EQ(grid.model.rowCount(), 19);
    EXPECT_EQ(grid.model.cell(1, 0).text, QStringLiteral("199"));
    EXPECT_EQ(grid.model.storedRow(1), 199);
    ASSERT_TRUE(grid.model.arrange({}));
    EXPECT_EQ(grid.model.rowCount(), 1000);
    EXPECT_EQ(grid.model.cell(0, 0).text, QStringLiteral("0"));
}

TEST(ResultModel, StaysAsItIsWhenSortingIsCancelled)
{
    Grid grid(numberedRows(200'000));
    ASSERT_TRUE(grid.model.arrange({.sortColumn = 1, .sortOrder = Qt::DescendingOrder}));
    grid.model.cancelArranging();
    EXPECT_FALSE(grid.model.isArranging());
    ASSERT_TRUE(settle());
    EXPECT_EQ(grid.model.cell(0, 0).text, QStringLiteral("0"));
    EXPECT_TRUE(grid.model.arrangement().isPlain());
}

TEST(ResultModel, ReportsTypeOfColumn)
{
    class Helper : public ResultSetViewControllerHelper
    {
        QString typeNameForColumn(qsizetype) const override { return QStringLiteral("nvarchar"); }
    };
    KNResultTableModel model(numberedRows(1), std::make_shared<Helper>());
    const QString tip = model.headerData(1, Qt::Horizontal, Qt::ToolTipRole).toString();
    EXPECT_TRUE(tip.contains(QStringLiteral(">name\nnvarchar\n"))) << tip.toStdString();
}

TEST(ResultModel, ShowsAColumnNameThatLooksLikeHtmlAsItIs)
{
    const QString name = QStringLiteral("<img src=/dev/zero> & <b>");
    const auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({name}, {56});
    result->setFinished();
    KNResultTableModel model(result, std::make_shared<ResultSetViewControllerHelper>());
    const QString tip = model.headerData(0, Qt::Horizontal, Qt::ToolTipRole).toString();
    EXPECT_FALSE(tip.contains(QStringLiteral("<img"))) << tip.toStdString();
    QTextDocument shown;
    shown.setHtml(tip);
    EXPECT_TRUE(shown.toPlainText().startsWith(name)) << shown.toPlainText().toStdString();
}

TEST(ResultGrid, MovesByKeyboard)
{
    Grid grid(numberedRows(1000));
    grid.view.setCurrentIndex(grid.model.index(0, 0));
    grid.press(Qt::Key_Down);
    grid.press(Qt::Key_Right);
    EXPECT_EQ(grid.current(), Place(1, 1));
    grid.press(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(grid.current(), Place(999, 1));
    EXPECT_EQ(grid.view.topRow(), 1000 - grid.view.visibleRowCount());
    grid.press(Qt::Key_Home);
    EXPECT_EQ(grid.current(), Place(999, 0));
    grid.press(Qt::Key_PageUp);
    EXPECT_EQ(grid.current(), Place(999 - grid.view.visibleRowCount(), 0));
    grid.press(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(grid.current(), Place(0, 0));
    EXPECT_EQ(grid.view.topRow(), 0);
    grid.press(Qt::Key_Up);
    EXPECT_EQ(grid.current(), Place(0, 0));
}

TEST(ResultGrid, SelectsByKeyboard)
{
    Grid grid(numberedRows(1000));
    grid.view.setCurrentIndex(grid.model.index(1, 0));
    grid.press(Qt::Key_Down, Qt::ShiftModifier);
    grid.press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{1, 2}}));
    EXPECT_EQ(grid.view.selectedRows().columns, (QList<qsizetype>{0, 1}));
    grid.press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{0, 1000}}));
    grid.view.setCurrentIndex(grid.model.index(5, 1));
    grid.press(Qt::Key_Space, Qt::ControlModifier);
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{0, 1000}}));
    EXPECT_EQ(grid.view.selectedRows().columns, (QList<qsizetype>{1}));
    grid.view.setCurrentIndex(grid.model.index(5, 1));
    grid.press(Qt::Key_Space, Qt::ShiftModifier);
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{5, 1}}));
    EXPECT_EQ(grid.view.selectedRows().columns, (QList<qsizetype>{0, 1}));
}

TEST(ResultGrid, SelectsCellsRowsAndColumnsByMouse)
{
    Grid grid(numberedRows(1000));
    QTest::mouseClick(grid.view.viewport(), Qt::LeftButton, {}, grid.centre(2, 1));
    EXPECT_EQ(grid.current(), Place(2, 1));
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{2, 1}}));
    QTest::mouseClick(grid.view.viewport(), Qt::LeftButton, Qt::ShiftModifier, grid.centre(4, 1));
    QTest::mouseClick(grid.view.viewport(), Qt::LeftButton, Qt::ControlModifier, grid.centre(7, 1));
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{2, 3}, {7, 1}}));
    const auto number = [&](int row) { return QPoint(5, grid.centre(row, 0).y()); };
    QTest::mouseClick(grid.view.rowNumbers(), Qt::LeftButton, {}, number(3));
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{3, 1}}));
    EXPECT_EQ(grid.view.selectedRows().columns.size(), 2);
    QTest::mouseClick(grid.view.rowNumbers(), Qt::LeftButton, Qt::ShiftModifier, number(6));
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{3, 4}}));
    const QPoint header(grid.view.horizontalHeader()->sectionViewportPosition(1) + 20, 5);
    QTest::mouseClick(grid.view.horizontalHeader()->viewport(), Qt::LeftButton, {}, header);
    EXPECT_EQ(grid.view.selectedRows().ranges, (Ranges{{0, 1000}}));
    EXPECT_EQ(grid.view.selectedRows().columns, (QList<qsizetype>{1}));
}

TEST(ResultGrid, AsksForAValueByReturnAndDoubleClick)
{
    Grid grid(numberedRows(10));
    QList<QModelIndex> requested;
    QObject::connect(&grid.view, &KNResultGridView::valueRequested, &grid.view,
                     [&](const QModelIndex &index) { requested.append(index); });
    grid.view.setCurrentIndex(grid.model.index(3, 1));
    grid.press(Qt::Key_Return);
    QTest::mouseClick(grid.view.viewport(), Qt::LeftButton, {}, grid.centre(4, 0));
    QTest::mouseDClick(grid.view.viewport(), Qt::LeftButton, {}, grid.centre(4, 0));
    EXPECT_EQ(requested, (QList<QModelIndex>{grid.model.index(3, 1), grid.model.index(4, 0)}));
}

TEST(ResultGrid, SizesColumnsToFirstRowsWithinBounds)
{
    Grid grid(result({QStringLiteral("n"), QStringLiteral("short"), QStringLiteral("long")},
                     {{KNValue(1), text("some twenty letters."), KNValue(QString(900, QLatin1Char('m')))}}));
    const QHeaderView &header = *grid.view.horizontalHeader();
    const int character = grid.view.fontMetrics().averageCharWidth();
    EXPECT_GE(header.sectionSize(0), 4 * character);
    EXPECT_LT(header.sectionSize(0), 12 * character);
    EXPECT_GE(header.sectionSize(1),
              grid.view.fontMetrics().horizontalAdvance(QStringLiteral("some twenty letters.")));
    EXPECT_LE(header.sectionSize(2), 45 * character);
}

TEST(ResultGrid, KeepsItsWidthsAndColumnWhenItIsSorted)
{
    Grid grid(numberedRows(1000));
    grid.view.horizontalHeader()->resizeSection(0, 123);
    grid.view.setCurrentIndex(grid.model.index(500, 1));
    ASSERT_TRUE(grid.model.arrange({.sortColumn = 0, .sortOrder = Qt::DescendingOrder}));
    ASSERT_TRUE(waitFor([&] { return !grid.model.isArranging(); }));
    EXPECT_EQ(grid.view.horizontalHeader()->sectionSize(0), 123);
    EXPECT_EQ(grid.current(), Place(0, 1));
    EXPECT_EQ(grid.view.topRow(), 0);
}

TEST(ResultGrid, ReportsCurrentCellToAssistivePrograms)
{
    Grid grid(result({QStringLiteral("a")}, {{KNValue()}, {text("x")}}));
    grid.view.setCurrentIndex(grid.model.index(1, 0));
    EXPECT_EQ(grid.view.accessibleDescription(), QStringLiteral("Row 2, a: x"));
    grid.view.setCurrentIndex(grid.model.index(0, 0));
    EXPECT_EQ(grid.view.accessibleDescription(), QStringLiteral("Row 1, a: NULL"));
}

TEST(ResultGrid, DrawsNullUnlikeTheTextNull)
{
    Grid null(result({QStringLiteral("a")}, {{KNValue()}}));
    Grid word(result({QStringLiteral("a")}, {{text("NULL")}}));
    const QRect cell = null.view.visualRect(null.model.index(0, 0));
    ASSERT_EQ(cell, word.view.visualRect(word.model.index(0, 0)));
    EXPECT_NE(null.view.viewport()->grab(cell).toImage(), word.view.viewport()->grab(cell).toImage());
}

TEST(ResultGrid, ScrollsAndFiltersTenMillionRowsWithoutAStall)
{
    Grid grid(numberedRows(ManyRows));
    ASSERT_EQ(grid.model.rowCount(), ManyRows);
    WatchedApplication &application = WatchedApplication::instance();
    application.beginWatch();
    const auto timed = [&](const std::function<void()> &work) {
        application.watch("the test's work", [&] {
            work();
            grid.view.viewport()->grab();
        });
    };
    for (int jump = 0; jump <= 100; ++jump)
        timed([&] { grid.view.verticalScrollBar()->setValue(jump * (ManyRows / 100 - 1)); });
    timed([&] { grid.press(Qt::Key_A, Qt::ControlModifier); });
    timed([&] { grid.view.selectColumn(1, QItemSelectionModel::ClearAndSelect); });
    timed([&] { grid.press(Qt::Key_End, Qt::ControlModifier | Qt::ShiftModifier); });
    EXPECT_EQ(grid.view.selectedRows().rowCount(), ManyRows);
    timed([&] { grid.model.arrange({.filterText = QString::number(ManyRows - 1)}); });
    ASSERT_TRUE(waitFor([&] { return !grid.model.isArranging(); }));
    timed([] {});
    EXPECT_EQ(grid.model.rowCount(), 1);
    timed([&] { grid.model.arrange({}); });
    const auto &longest = application.longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
}
