#include "Desktop/Application.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/Theme.h"
#include "Foundation/KNDispatch.h"
#include "UI/KNPreferences.h"

#include <QApplication>
#include <QTest>

#include <cstdio>

namespace {

/// Waits for the program; ends this one when nothing comes.
void waitFor(const char *what, const std::function<bool()> &condition)
{
    if (QTest::qWaitFor(condition, 60000))
        return;
    std::fprintf(stderr, "There was no %s.\n", what);
    std::exit(1);
}

void save(QWidget *window, const QString &folder, const char *name)
{
    const QString path = QStringLiteral("%1/%2.png").arg(folder, QString::fromLatin1(name));
    if (!window->grab().save(path)) {
        std::fprintf(stderr, "%s could not be written.\n", path.toLocal8Bit().constData());
        std::exit(1);
    }
}

MainWindow *mainWindow()
{
    MainWindow *window = nullptr;
    waitFor("main window", [&] {
        for (QWidget *const widget : QApplication::topLevelWidgets()) {
            if (auto *const found = qobject_cast<MainWindow *>(widget))
                window = found;
        }
        return window != nullptr;
    });
    return window;
}

QModelIndex rowOf(const QAbstractItemModel &model, const QStringList &path)
{
    QModelIndex index = model.index(0, 0);
    for (const QString &name : path) {
        QModelIndex found;
        for (int row = 0; row < model.rowCount(index); ++row) {
            if (model.index(row, 0, index).data().toString() == name)
                found = model.index(row, 0, index);
        }
        if (!found.isValid())
            return {};
        index = found;
    }
    return index;
}

void expand(MainWindow &window, const QStringList &path)
{
    KNDatabaseTreeView *const view = window.explorer()->view();
    for (int i = 1; i <= path.size(); ++i) {
        waitFor(qPrintable(path.at(i - 1)), [&] { return rowOf(*view->model(), path.mid(0, i)).isValid(); });
        view->expand(rowOf(*view->model(), path.mid(0, i)));
    }
}

void showMainWindow(MainWindow &window, const QString &folder, const char *name, KNPreferences::Theme theme)
{
    KNPreferences preferences = KNPreferences::current();
    preferences.theme = theme;
    preferences.save();
    QTest::qWait(50); // the palette goes through the event loop
    save(&window, folder, name);
}

/// Runs a script whose results and messages are worth a look.
void runDemo(MainWindow &window)
{
    QueryTab *const tab = window.currentTab();
    tab->setText(
        QStringLiteral("-- What the customers of each country have ordered\n"
                       "USE shop;\n"
                       "\n"
                       "SELECT c.Country, c.CompanyName, COUNT(*) AS Orders, SUM(o.Freight) AS Freight,\n"
                       "       MAX(o.OrderedAt) AS [Last order]\n"
                       "FROM dbo.Customers AS c\n"
                       "JOIN dbo.Orders AS o ON o.CustomerId = c.CustomerId\n"
                       "WHERE c.Country <> N'CH'\n"
                       "GROUP BY c.Country, c.CompanyName\n"
                       "ORDER BY Orders DESC;\n"
                       "\n"
                       "SELECT TOP 20 * FROM dbo.Products;\n"));
    tab->run();
    waitFor("end of the query", [&] { return !tab->isRunning(); });
}

} // namespace

/// Takes pictures of the program's windows on its sample server: main FOLDER
int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("Usage: vantor-screenshots FOLDER\n", stderr);
        return 2;
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("vantor"));
    const QString folder = QString::fromLocal8Bit(argv[1]);
    new Theme(qApp);
    Options options;
    options.useSampleServer = true;
    Application program(options);
    if (!program.start())
        return 1;
    MainWindow *const window = mainWindow();
    window->resize(1280, 800);
    expand(*window, {QStringLiteral("shop"), QStringLiteral("Tables"), QStringLiteral("Orders"),
                     QStringLiteral("Columns")});
    waitFor("end of loading", [&] {
        return !static_cast<KNDatabaseTreeModel *>(window->explorer()->view()->model())->isBusy();
    });
    runDemo(*window);
    showMainWindow(*window, folder, "main-light", KNPreferences::Theme::Light);
    showMainWindow(*window, folder, "main-dark", KNPreferences::Theme::Dark);
    return 0;
}
