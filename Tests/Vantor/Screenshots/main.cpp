#include "ActivityScreenshots.h"
#include "DesignerScreenshots.h"
#include "Desktop/Application.h"
#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Desktop/Main/Theme.h"
#include "Desktop/Preferences/PreferencesDialog.h"
#include "Desktop/Preferences/ShortcutsDialog.h"
#include "Desktop/Query/QueryTab.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "Desktop/Start/StartWindow.h"
#include "EditingScreenshots.h"
#include "EditorScreenshots.h"
#include "Foundation/KNDispatch.h"
#include "Implementations/MSSQLRecentConnection.h"
#include "ImportScreenshots.h"
#include "Recent/SQLRecentConnectionList.h"
#include "RowEditing/MSSQLEditRowHelper.h"
#include "Screenshot.h"
#include "ScriptScreenshots.h"
#include "Support/SampleServerFixture.h"
#include "UI/Connecting/ConnectionWindowController.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/Connecting/KNSSHTunnelWindowController.h"
#include "UI/Connecting/KNSessionOptionsWindowController.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/DatabaseTree/KNPropertiesDialog.h"
#include "UI/Dialogs/MSSQLBrowseServersWindowController/MSSQLBrowseServersWindowController.h"
#include "UI/KNPreferences.h"
#include "UI/MSSQLUserInterface.h"
#include "UI/Results/KNColumnFilterDialog.h"
#include "UI/Results/KNExportDialog.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "UI/Results/KNValueViewer.h"
#include "UI/RowEditing/KNEditRowModel.h"
#include "UI/RowEditing/KNEditRowWindowController.h"
#include "UI/Snippets/KNSnippetStore.h"
#include "UI/TableDesigner/MSSQLRenameWindowController.h"
#include "UI/Workspace/KNQueryPreview.h"
#include "UI/Workspace/KNQueryPreviewDialog.h"

#include <QApplication>
#include <QDir>
#include <QTableWidget>
#include <QTest>

#include <cstdio>

using Screenshot::save;
using Screenshot::waitFor;

namespace {

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

void setTheme(KNPreferences::Theme theme)
{
    KNPreferences preferences = KNPreferences::current();
    preferences.theme = theme;
    preferences.save();
    QTest::qWait(50); // the palette goes through the event loop
}

/// Runs a script whose results and messages are worth a look.
void runDemo(MainWindow &window)
{
    auto *const tab = qobject_cast<QueryTab *>(window.currentDocument());
    tab->setText(
        QStringLiteral("-- What the customers of each country have ordered\n"
                       "USE shop;\n"
                       "\n"
                       "SELECT c.Country, c.CompanyName, COUNT(*) AS Orders, SUM(o.Freight) AS Freight,\n"
                       "       MAX(o.OrderedAt) AS [Last order]\n"
                       "FROM dbo.Customers AS c\n"
                       "JOIN dbo.Orders AS o ON o.CustomerId = c.CustomerId\n"
                       "WHERE c.Country NOT IN (N'JP', N'NZ')\n"
                       "GROUP BY c.Country, c.CompanyName\n"
                       "ORDER BY Orders DESC;\n"
                       "\n"
                       "SELECT TOP 20 * FROM dbo.Products;\n"));
    tab->run();
    waitFor("end of the query", [&] { return !tab->isRunning(); });
}

/// Connections as a user might have made them.
void rememberConnections(const MSSQLUserInterface &connector)
{
    struct Made
    {
        const char *alias, *host, *user, *database, *group, *colour;
    };
    SQLRecentConnectionList &list = connector.recentConnections();
    waitFor("list of connections", [&] { return !list.isLoading(); });
    for (const Made &made :
         {Made{"Reports", "reports.example.com", "analyst", "warehouse", "", ""},
          Made{"Test", "192.0.2.17,14330", "sa", "shop", "Shop", "#3a8a3f"},
          Made{"Azure, west", "shop.database.windows.net", "carla@shop", "shop", "Shop", ""},
          Made{"Production", "db1.example.com\\SHOP", "EXAMPLE\\carla", "shop", "Shop", "#d0393e"}}) {
        const SQLRecentConnectionPtr entry = list.makeEntry();
        entry->connectionId = SQLRecentConnection::createConnectionId();
        entry->alias = QString::fromUtf8(made.alias);
        entry->serverHost = QString::fromUtf8(made.host);
        entry->username = QString::fromUtf8(made.user);
        std::static_pointer_cast<MSSQLRecentConnection>(entry)->database = QString::fromUtf8(made.database);
        entry->group = QString::fromUtf8(made.group);
        entry->colour = QString::fromUtf8(made.colour);
        entry->isProduction = entry->alias == QStringLiteral("Production");
        entry->lastUsed = QDateTime::currentDateTimeUtc();
        entry->registerColour();
        list.update(entry);
        QTest::qWait(5); // they are told apart by their times
    }
}

void showConnecting(const QString &folder)
{
    const MSSQLUserInterface connector;
    rememberConnections(connector);
    StartWindow start(connector);
    start.show();
    QTest::qWait(50);
    save(&start, folder, "start");

    ConnectionWindowController *const dialog = connector.createConnectionWindowController(&start);
    dialog->setRecentConnection(connector.recentConnections().connections().first());
    dialog->beginSheet([](int) {});
    QTest::qWait(50);
    save(dialog, folder, "connection");
    dialog->endSheetWithReturnCode(0);
}

void showBrowser(const QString &folder)
{
    const SampleServerFixture first({.arguments = {"--browser-port", "0", "--instance", "SHOP"}});
    MSSQLBrowserServiceClient::setSearch({.address = QStringLiteral("127.0.0.1"),
                                          .port = first.browserPort(),
                                          .timeout = std::chrono::milliseconds(300),
                                          .pause = std::chrono::seconds(10)});
    auto *const browser = new MSSQLBrowseServersWindowController(nullptr);
    browser->beginSheet([](int) {});
    waitFor("server", [] { return !MSSQLBrowserServiceClient::allDatabases().isEmpty(); });
    auto *const table = browser->findChild<QTableWidget *>();
    waitFor("row", [&] { return table->rowCount() > 0; });
    table->selectRow(0);
    save(browser, folder, "browser");
    browser->endSheetWithReturnCode(0);
}

void showViewer(MainWindow &window, const QString &folder)
{
    const auto result = std::make_shared<KNDatabaseResultSet>();
    result->setColumns({QStringLiteral("Details")}, {47});
    result->addRows({{KNValue(QStringLiteral(
        "{\"order\":1001,\"customer\":{\"name\":\"Café Zürich\",\"city\":\"Zürich\",\"active\":true},"
        "\"lines\":[{\"sku\":\"PEN-001\",\"quantity\":2,\"price\":49.90},"
        "{\"sku\":\"INK-001\",\"quantity\":1,\"price\":14.25}],\"remark\":null}"))}});
    result->setFinished();
    auto *const viewer = new KNValueViewer(result, 0, 0, QStringLiteral("nvarchar"), &window);
    viewer->show();
    waitFor("value", [&] { return !viewer->isLoading(); });
    QTest::qWait(50);
    save(viewer, folder, "viewer");
    viewer->close();
}

void showProperties(MainWindow &window, const QString &folder)
{
    KNDatabaseTreeView *const view = window.explorer()->view();
    const QModelIndex table =
        rowOf(*view->model(), {QStringLiteral("shop"), QStringLiteral("Tables"), QStringLiteral("Orders")});
    const auto entry = static_cast<KNDatabaseTreeModel *>(view->model())->entry(table);
    auto *const dialog = new KNPropertiesDialog(entry->displayName(), entry->propertiesLoader(), &window);
    dialog->show();
    waitFor("property", [&] { return !dialog->text().isEmpty(); });
    QTest::qWait(50);
    save(dialog, folder, "properties");
    dialog->close();
}

std::shared_ptr<const VantorDBC> shopSettings(MainWindow &window)
{
    const VantorDBCPtr settings = window.databaseConnectionDetails()->copy();
    settings->setDatabase(QStringLiteral("shop"));
    return settings;
}

void showRowForm(MainWindow &window, const QString &folder)
{
    const auto row = std::make_shared<MSSQLEditRowHelper>(shopSettings(window), QStringLiteral("dbo"),
                                                          QStringLiteral("Orders"), std::nullopt);
    auto *const form = new KNEditRowWindowController(row, false, &window);
    form->beginSheet({});
    waitFor("row form", [&] { return form->model()->rowCount() > 0; });
    form->model()->setData(form->model()->index(1, KNEditRowModel::Value), QStringLiteral("3"));
    form->model()->setNull(2);
    QTest::qWait(50);
    save(form, folder, "row-form");
    delete form;
}

/// Shows a sheet, waits for what it loads and closes it.
void showSheet(KNWindowController *sheet, const QString &folder, const char *name)
{
    sheet->beginSheet([](int) {});
    waitFor("end of loading", [] { return KNDispatch::waitUntilIdle(1); });
    QTest::qWait(100);
    save(sheet, folder, name);
    delete sheet;
}

void showPreview(MainWindow &window, const QString &folder)
{
    KNQueryPreview *const preview =
        KNQueryPreview::createQueryPreviewViewContoller(&window, *shopSettings(window));
    preview->setTitle(QStringLiteral("Do you really want to drop the table 'Orders'?"),
                      QStringLiteral("Once a table has been removed, it cannot be recovered."),
                      QStringLiteral("Drop"), QString());
    preview->setRemoves(true);
    preview->setQueryLoader(KNStatementPair{QStringLiteral("DROP TABLE Orders"),
                                            QStringLiteral("DROP TABLE dbo.Orders"),
                                            QStringLiteral("This names the table without its schema.")}
                                .loader(false));
    preview->beginSheet({});
    QTest::qWait(100);
    auto *const dialog = window.findChild<KNQueryPreviewDialog *>();
    save(dialog, folder, "preview");
    dialog->reject();
}

void showSheets(MainWindow &window, const QString &folder)
{
    showEditing(window, folder);
    showValueEditing(window, folder);
    showActivity(window, shopSettings(window), folder);
    const auto settings = shopSettings(window);
    showSheet(
        new MSSQLRenameWindowController(QStringLiteral("Rename Column"), QStringLiteral("OrderId"), &window),
        folder, "rename-column");
    showSheet(new KNSSHTunnelWindowController({QStringLiteral("gate"), 22, {}, {}}, &window), folder,
              "tunnel");
    showSheet(new KNSessionOptionsWindowController({}, &window), folder, "options");
    showSheet(new KNLoginWindowController(*settings, true, &window), folder, "login");
    const auto *const tab = qobject_cast<QueryTab *>(window.documents().first());
    KNResultSection *const section = tab->resultsPane()->section(0);
    showSheet(new KNColumnFilterDialog(section->model(), 0, &window), folder, "column-filter");
    showSheet(new KNExportDialog(section->model().shownRows(), 1, &window), folder, "export");
    showPreview(window, folder);
    ShortcutsDialog shortcuts(window.actions()->shortcuts(), &window);
    shortcuts.show();
    QTest::qWait(50);
    save(&shortcuts, folder, "shortcuts");
}

void showOtherWindows(MainWindow &window, const QString &folder)
{
    showViewer(window, folder);
    showProperties(window, folder);
    showDesigner(window, folder);
    showRowForm(window, folder);
    showImport(window, folder);
    showScripts(window, folder);
    PreferencesDialog preferences(MSSQLUserInterface().preferences(), &window,
                                  KNSnippetStore::forSettings(*window.databaseConnectionDetails()));
    preferences.show();
    save(&preferences, folder, "preferences");
    QueryHistoryDialog history(QueryHistory(window.databaseConnectionDetails()->connectionId()),
                               *window.databaseConnectionDetails(), &window);
    history.show();
    waitFor("history", [&] { return history.isLoaded(); });
    QTest::qWait(50);
    save(&history, folder, "history");
}

} // namespace

/// Takes pictures of the program's windows on its sample server: vantor-screenshots FOLDER. All windows and
/// dialogs are taken, also in the dark, when VANTOR_ALL_SCREENSHOTS is set.
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
    setTheme(KNPreferences::Theme::Light);
    save(window, folder, "main-light");
    showOtherWindows(*window, folder);
    showConnecting(folder);
    showBrowser(folder);
    const bool takesAll = qEnvironmentVariableIsSet("VANTOR_ALL_SCREENSHOTS");
    if (takesAll) {
        showSheets(*window, folder);
        EditorScreenshots::take(*window, folder);
    }
    setTheme(KNPreferences::Theme::Dark);
    save(window, folder, "main-dark");
    if (takesAll) {
        const QString dark = folder + QStringLiteral("/dark");
        QDir().mkpath(dark);
        showOtherWindows(*window, dark);
        showSheets(*window, dark);
        EditorScreenshots::take(*window, dark);
        showConnecting(dark);
        showBrowser(dark);
    }
    return 0;
}
