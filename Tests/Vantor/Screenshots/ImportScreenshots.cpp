#include "ImportScreenshots.h"

#include "Screenshot.h"
#include "UI/Import/KNImportMappingModel.h"
#include "UI/Import/KNImportProgressPage.h"
#include "UI/Import/KNImportWindowController.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"

#include <QComboBox>
#include <QPointer>
#include <QTemporaryDir>

using Screenshot::save;
using Screenshot::waitFor;

namespace {

constexpr int DrawingTime = 100; // ms

QString writeCustomers(const QTemporaryDir &folder)
{
    QFile file(folder.filePath(QStringLiteral("customers.csv")));
    if (!file.open(QIODevice::WriteOnly))
        std::exit(1);
    file.write("CustomerId,Name,Email,Balance,Since,Comment\n"
               "9001,Zoë Müller,zoe@example.com,1250.50,2024-02-29,\"prefers letters, no calls\"\n"
               "9002,日本商事,info@example.jp,,2023-11-05,\n"
               "9003,O'Brien & Sons,,17.00,2022-01-17,\"\"\n"
               "x004,Nobody,nobody@example.com,12.345,2021-02-30,not a number\n");
    return file.fileName();
}

} // namespace

void showImport(MainWindow &window, const QString &folder)
{
    const QTemporaryDir files;
    const VantorDBCPtr settings = window.databaseConnectionDetails()->copy();
    settings->setDatabase(QStringLiteral("shop"));
    QPointer<KNImportWindowController> wizard;
    QPointer<MSSQLCreateTableWindowController> newTable;
    wizard = new KNImportWindowController(
        settings, {writeCustomers(files), QStringLiteral("Customers")},
        [&](const QList<KNImportColumnAnalysis> &columns, const KNImportTargetPage::Created &) {
            newTable = new MSSQLCreateTableWindowController(settings, columns, wizard);
            newTable->beginSheet({});
        },
        &window);
    wizard->beginSheet({});
    waitFor("import",
            [&] { return !wizard->session()->isAnalysing() && wizard->targetPage()->tables()->count() > 0; });
    const auto take = [&](const char *name) {
        QTest::qWait(DrawingTime);
        save(wizard, folder, name);
    };
    take("import-file");
    wizard->goOn();
    take("import-table");
    wizard->targetPage()->createTable();
    waitFor("new table", [&] { return newTable != nullptr; });
    QTest::qWait(DrawingTime * 4);
    save(newTable, folder, "import-new-table");
    newTable->reject();
    wizard->goOn();
    take("import-options");
    wizard->runDry();
    waitFor("dry run", [&] { return !wizard->session()->isRunning(); });
    take("import-result");
    wizard->reject();
    QTest::qWait(0);
}
