#include "Support/ResultTesting.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNResultGridView.h"

#include <QScrollBar>

#include <thread>

using namespace ResultTesting;
using namespace WindowTesting;

TEST(ResultModelThreads, AGridReadsWhileAWriterWrites)
{
    const auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({QStringLiteral("id"), QStringLiteral("name")}, {56, 47});
    KNResultTableModel model(result, std::make_shared<ResultSetViewControllerHelper>());
    KNResultGridView view(model); // out of sight: Qt paints with threads that the sanitizer cannot follow
    view.resize(400, 300);
    constexpr int Count = 30'000;
    std::thread writer([&] {
        for (int row = 0; row < Count; ++row)
            result->addRows({{KNValue(row), KNValue(QString::number(row))}});
        result->setFinished();
    });
    int wrong = 0;
    EXPECT_TRUE(waitFor([&] {
        model.showPublishedRows();
        view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum());
        const int last = model.rowCount() - 1;
        if (last >= 0 && (model.cell(last, 0).text != QString::number(last) ||
                          model.cell(last, 1).text != QString::number(last)))
            ++wrong;
        return model.isFinished();
    }));
    writer.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(model.rowCount(), Count);
}

TEST(ResultModelThreads, RowsAreReadAndFilteredAnewWhileTheyAreSorted)
{
    KNResultTableModel model(numberedRows(50'000), std::make_shared<ResultSetViewControllerHelper>());
    model.showPublishedRows();
    for (int i = 0; i < 10; ++i) {
        model.arrange({.sortColumn = i % 2, .sortOrder = Qt::DescendingOrder});
        for (int row = 0; row < 1000; ++row)
            EXPECT_FALSE(model.cell(row, 1).isNull);
        model.arrange({.filterText = QString::number(i)});
    }
    EXPECT_TRUE(waitFor([&] { return !model.isArranging(); }));
    EXPECT_EQ(model.arrangement().filterText, QStringLiteral("9"));
    for (int row = 0; row < 100; ++row)
        EXPECT_TRUE(model.cell(row, 0).text.contains(QLatin1Char('9')));
}

TEST(ResultModelThreads, AModelMayGoWhileItIsSorted)
{
    for (int i = 0; i < 20; ++i) {
        KNResultTableModel model(numberedRows(20'000), std::make_shared<ResultSetViewControllerHelper>());
        model.showPublishedRows();
        model.arrange({.sortColumn = 1});
    }
    EXPECT_TRUE(settle());
}
