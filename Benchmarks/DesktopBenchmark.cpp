// What the desktop program takes: from its start to a window that can be used, and a million rows of a server
// until the last one is shown. On the offscreen platform, with the program's own sample server.

#include "Database/VantorDatabaseConnectionPool.h"
#include "Desktop/Application.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/Theme.h"
#include "Desktop/Query/QueryTab.h"
#include "Foundation/KNDispatch.h"
#include "SQL/KNQuerySplitter.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultsPane.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <unistd.h>

namespace {

const QString Query = QStringLiteral("SELECT * FROM generate_rows(1000000)");

void waitFor(const char *what, const std::function<bool()> &condition)
{
    if (QTest::qWaitFor(condition, 120'000))
        return;
    std::fprintf(stderr, "There was no %s.\n", what);
    std::exit(1);
}

/// Seconds since the system started this process, to a hundredth.
double processAge()
{
    QFile file(QStringLiteral("/proc/self/stat"));
    if (!file.open(QIODevice::ReadOnly))
        std::exit(1);
    const QByteArray stat = file.readAll();
    constexpr int StartTime = 19; // fields behind the program's name
    const QByteArray ticks = stat.mid(stat.lastIndexOf(')') + 2).split(' ').at(StartTime);
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9 -
           ticks.toDouble() / static_cast<double>(sysconf(_SC_CLK_TCK));
}

MainWindow *mainWindow()
{
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (auto *const window = qobject_cast<MainWindow *>(widget))
            return window;
    }
    return nullptr;
}

double secondsToReadWithoutWindow(const VantorDBC &details)
{
    QElapsedTimer timer;
    timer.start();
    std::atomic<bool> isDone = false;
    KNDispatch::globalQueue([&] {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                KNResultSetHolder results;
                client.executeQueryDetails(details.createQuerySplitter()->doSplitQuery(Query), results, {},
                                           failure);
            },
            details, &error);
        isDone = true;
    });
    waitFor("end of reading", [&] { return isDone.load(); });
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

double secondsToShow(MainWindow &window)
{
    auto *const tab = qobject_cast<QueryTab *>(window.currentDocument());
    tab->setText(Query);
    QElapsedTimer timer;
    timer.start();
    tab->run();
    waitFor("end of the query", [&] { return !tab->isRunning(); });
    auto *const grid = tab->resultsPane()->findChild<KNResultGridView *>();
    grid->scrollToBottom();
    grid->grab();
    return static_cast<double>(timer.nsecsElapsed()) * 1e-9;
}

} // namespace

int main(int argc, char **argv)
{
    const QTemporaryDir home;
    for (const char *const variable :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"})
        qputenv(variable, home.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vantor"));
    new Theme(qApp);
    Options options;
    options.useSampleServer = true;
    Application program(options);
    if (!program.start())
        return 1;
    waitFor("main window", [] { return mainWindow() != nullptr; });
    MainWindow *const window = mainWindow();
    window->grab();
    const double toWindow = processAge();
    QAbstractItemModel *const tree = window->explorer()->view()->model();
    waitFor("database", [&] { return tree->rowCount(tree->index(0, 0)) > 0; });
    window->grab();
    const double toDatabases = processAge();
    std::printf("desktop, start to a window that accepts input  %.2f s\n", toWindow);
    std::printf(
        "desktop, start to the databases in the tree  %.2f s, including the start of a sample server\n",
        toDatabases);

    const VantorDBC &details = *window->databaseConnectionDetails();
    secondsToReadWithoutWindow(details); // warms up
    const double bare = secondsToReadWithoutWindow(details);
    const double shown = secondsToShow(*window);
    std::printf(
        "desktop, 1,000,000 rows until the last one is shown  %.2f s, %.2f times reading them without "
        "a window\n",
        shown, shown / bare);
    std::fflush(stdout);
    delete window;
    KNDispatch::waitUntilIdle(60'000);
    return 0;
}
