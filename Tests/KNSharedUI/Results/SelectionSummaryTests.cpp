#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNSelectionSummary.h"

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

class SummedGrid
{
public:
    explicit SummedGrid(const KNDatabaseResultSetPtr &result)
        : model(result, std::make_shared<ResultSetViewControllerHelper>())
        , view(model)
        , summary(new KNSelectionSummary(&view))
    {
        model.showPublishedRows();
        view.resize(600, 400);
        view.show();
    }

    /// The summary after everything has been calculated.
    QString text()
    {
        EXPECT_TRUE(waitFor([&] {
            QTest::qWait(60); // longer than the pause after a selection
            return !summary->isCalculating();
        }));
        return summary->text();
    }

    KNResultTableModel model;
    KNResultGridView view;
    KNSelectionSummary *summary;
};

} // namespace

TEST(SelectionSummary, DescribesNumbersDatesAndText)
{
    SummedGrid grid(result({QStringLiteral("n"), QStringLiteral("d"), QStringLiteral("t")},
                           {{decimal(u"1000000.50"),
                             KNValue(KNDateTime{.ticks = 0, .parts = KNDateTime::Parts::Date}), text("x")},
                            {decimal(u"-2.25"), KNValue(), text("y")},
                            {KNValue(), KNValue(), KNValue()}}));
    EXPECT_EQ(grid.text(), QString());
    grid.view.selectColumn(0, QItemSelectionModel::ClearAndSelect);
    EXPECT_EQ(grid.text(), QStringLiteral("Count: 2 and 1 NULL · Sum: 999,998.25 · Average: 499,999.125 · "
                                          "Minimum: -2.25 · Maximum: 1,000,000.50"));
    grid.view.selectColumn(1, QItemSelectionModel::ClearAndSelect);
    EXPECT_EQ(grid.text(), QStringLiteral("Count: 1 and 2 NULL · Minimum: 1900-01-01 · Maximum: 1900-01-01"));
    grid.view.selectRows(0, 1, QItemSelectionModel::ClearAndSelect);
    EXPECT_EQ(grid.text(), QStringLiteral("Count: 5 and 1 NULL"));
    grid.view.setCurrentIndex(grid.model.index(0, 0));
    EXPECT_EQ(grid.text(), QString()) << "one cell describes itself";
}

TEST(SelectionSummary, IsForgottenWithItsSelection)
{
    SummedGrid grid(numberedRows(100));
    grid.view.selectColumn(0, QItemSelectionModel::ClearAndSelect);
    EXPECT_EQ(grid.text(),
              QStringLiteral("Count: 100 · Sum: 4,950 · Average: 49.5 · Minimum: 0 · Maximum: 99"));
    ASSERT_TRUE(grid.model.arrange({.filterText = QStringLiteral("row 9")}));
    ASSERT_TRUE(waitFor([&] { return !grid.model.isArranging(); }));
    EXPECT_EQ(grid.text(), QString());
    grid.view.selectColumn(0, QItemSelectionModel::ClearAndSelect);
    EXPECT_TRUE(grid.text().startsWith(QStringLiteral("Count: 11 · Sum: 954 "))) << "of the shown rows";
}

TEST(SelectionSummary, OfMillionsOfCellsLeavesTheWindowFree)
{
    SummedGrid grid(numberedRows(3'000'000));
    WatchedApplication &application = WatchedApplication::instance();
    application.beginWatch();
    int changes = 0;
    QObject::connect(grid.summary, &KNSelectionSummary::changed, grid.summary, [&] { ++changes; });
    application.watch("selecting", [&] { grid.view.selectColumn(0, QItemSelectionModel::ClearAndSelect); });
    ASSERT_TRUE(waitFor([&] { return grid.summary->isCalculating(); }));
    EXPECT_EQ(grid.summary->text(), QStringLiteral("Calculating…"));
    application.watch("selecting others",
                      [&] { grid.view.selectRows(0, 1, QItemSelectionModel::ClearAndSelect); });
    ASSERT_TRUE(waitFor([&] { return grid.summary->text().startsWith(QStringLiteral("Count: 4")); }));
    grid.view.selectColumn(0, QItemSelectionModel::ClearAndSelect);
    ASSERT_TRUE(waitFor([&] { return grid.summary->text().startsWith(QStringLiteral("Count: 3,000,000")); }));
    EXPECT_TRUE(grid.summary->text().contains(QStringLiteral("Sum: 4,499,998,500,000 ")));
    EXPECT_LT(application.longestCall().milliseconds, WatchedApplication::LongestAllowed)
        << application.longestCall().what;
}
