// What a result grid takes beside the rows themselves: showing rows while a thread appends them, painting
// anywhere in ten million rows, sorting and filtering. Without a display and without a server.

#include "Foundation/KNDispatch.h"
#include "Support/ResultTesting.h"
#include "UI/Results/KNResultGridView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QScrollBar>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>

namespace {

constexpr int Rows = 1'000'000;
constexpr int ManyRows = 10'000'000;

double seconds(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

KNDatabaseResultSetPtr emptyResult()
{
    auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({QStringLiteral("id"), QStringLiteral("amount"), QStringLiteral("name"),
                        QStringLiteral("at"), QStringLiteral("note")},
                       {56, 62, 47, 61, 47});
    return result;
}

/// Appends rows as a connector does: a hundred at a time.
void append(KNDatabaseResultSet &result, int count)
{
    KNRowStore &rows = result.rows();
    quint32 random = 1;
    for (int row = 0; row < count; ++row) {
        random = random * 1664525 + 1013904223;
        char name[32];
        const int length = std::snprintf(name, sizeof name, "customer %u", random >> 8);
        rows.beginRow();
        rows.appendInt32(row);
        rows.appendDouble(random / 7.0);
        rows.appendText(name, static_cast<std::size_t>(length));
        rows.appendDate({.ticks = qint64{random} * 10'000'000});
        if (random & 256)
            rows.appendNull();
        else
            rows.appendText("a note of some words", 20);
        rows.endRow();
        if (row % 100 == 99)
            rows.publish();
    }
    rows.publish();
    result.setFinished();
}

/// The bare loop: every value of every row, made and dropped.
void readAll(const KNDatabaseResultSet &result)
{
    KNRowReader reader(result.rows());
    const qsizetype columns = result.columnNames().size();
    const qsizetype count = result.rows().rowCount();
    qsizetype nulls = 0;
    for (qsizetype row = 0; row < count; ++row) {
        reader.seek(row);
        for (qsizetype column = 0; column < columns; ++column)
            nulls += reader.next().value().isNull();
    }
    if (nulls == 0)
        std::abort();
}

struct Grid
{
    explicit Grid(const KNDatabaseResultSetPtr &result)
        : model(result, std::make_shared<ResultSetViewControllerHelper>())
        , view(model)
    {
        view.resize(1280, 800);
        view.show();
    }
    void paint() { view.viewport()->render(&m_screen); }

    KNResultTableModel model;
    KNResultGridView view;

private:
    QImage m_screen{1280, 800, QImage::Format_RGB32};
};

/// From the first row until the last is on the screen, looking thirty times a second as the results pane
/// does.
double arriving()
{
    const KNDatabaseResultSetPtr result = emptyResult();
    Grid grid(result);
    return seconds([&] {
        std::thread writer([&] { append(*result, Rows); });
        while (!grid.model.isFinished()) {
            result->rows().waitForMoreThan(Rows - 1, std::chrono::milliseconds(33));
            grid.model.showPublishedRows();
            grid.paint();
        }
        grid.view.scrollTo(grid.model.index(Rows - 1, 0));
        grid.paint();
        writer.join();
    });
}

double arranging(Grid &grid, const KNRowArrangement &arrangement)
{
    grid.model.arrange({});
    return seconds([&] {
        grid.model.arrange(arrangement);
        while (grid.model.isArranging())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        grid.paint();
    });
}

double worstJump(Grid &grid)
{
    double worst = 0;
    for (int jump = 0; jump < 1000; ++jump) {
        const int row = static_cast<int>(qint64{jump} * 7'919'777 % ManyRows);
        worst = std::max(worst, seconds([&] {
                             grid.view.verticalScrollBar()->setValue(row);
                             grid.paint();
                         }));
    }
    return worst;
}

void print(const char *what, const char *figures)
{
    std::printf("grid, %s  %s\n", what, figures);
}

void printSeconds(const char *what, double time, double comparedWith, const char *comparison)
{
    char figures[128];
    std::snprintf(figures, sizeof figures, "%.2f s, %.1f times %s", time, time / comparedWith, comparison);
    print(what, figures);
}

void printMilliseconds(const char *what, double time)
{
    char figures[64];
    std::snprintf(figures, sizeof figures, "%.1f ms", 1000 * time);
    print(what, figures);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argumentCount, arguments);

    const KNDatabaseResultSetPtr result = emptyResult();
    const double writing = seconds([&] { append(*result, Rows); });
    const double reading = seconds([&] { readAll(*result); });
    printSeconds("1,000,000 rows until the last one is shown", arriving(), writing, "appending them alone");

    Grid grid(result);
    grid.model.showPublishedRows();
    const auto printArranging = [&](const char *what, const KNRowArrangement &arrangement) {
        printSeconds(what, arranging(grid, arrangement), reading, "reading all their values");
    };
    printArranging("sorting them by a number", {.sortColumn = 1});
    printArranging("sorting them by a text", {.sortColumn = 2});
    printArranging("filtering them by a column's text",
                   {.filterText = QStringLiteral("9999"), .filterColumn = 2});
    printArranging("filtering them by all columns", {.filterText = QStringLiteral("9999")});

    const KNDatabaseResultSetPtr many = emptyResult();
    append(*many, ManyRows);
    Grid large(many);
    printMilliseconds("showing 10,000,000 rows at once", seconds([&] {
                          large.model.showPublishedRows();
                          large.paint();
                      }));
    printMilliseconds("worst of 1,000 jumps among them", worstJump(large));
    printMilliseconds("selecting all of them", seconds([&] {
                          large.view.selectAll();
                          large.paint();
                      }));
    KNDispatch::waitUntilIdle(60'000);
    return 0;
}
