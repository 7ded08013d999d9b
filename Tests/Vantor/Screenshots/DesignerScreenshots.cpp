#include "DesignerScreenshots.h"

#include "Screenshot.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"
#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"
#include "UI/TableDesigner/MSSQLRenameTableWindowController.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableListForeignKeysViewController.h"
#include "UI/TableDesigner/MSSQLTableTriggerDesignerViewController.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>

using Screenshot::save;
using Screenshot::waitFor;

namespace {

constexpr int LoadingTime = 400; // ms

std::shared_ptr<const VantorDBC> shopSettings(MainWindow &window)
{
    const VantorDBCPtr settings = window.databaseConnectionDetails()->copy();
    settings->setDatabase(QStringLiteral("shop"));
    return settings;
}

QDialog *sheet()
{
    waitFor("sheet", [] { return qobject_cast<QDialog *>(QApplication::activeModalWidget()); });
    QTest::qWait(LoadingTime);
    return qobject_cast<QDialog *>(QApplication::activeModalWidget());
}

/// Takes a picture of the sheet that is shown, and closes it.
void saveSheet(const QString &folder, const char *name)
{
    QDialog *const shown = sheet();
    save(shown, folder, name);
    shown->reject();
    QTest::qWait(0);
}

template <typename Page>
Page *page(MSSQLTableDesignerViewController &designer)
{
    Page *const found = designer.findChild<Page *>();
    designer.tabs()->setCurrentWidget(found);
    return found;
}

void showIndexes(MSSQLTableDesignerViewController &designer, const QString &folder)
{
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>(designer);
    waitFor("index", [&] { return indexes->list()->topLevelItemCount() > 1; });
    indexes->list()->setCurrentItem(indexes->list()->topLevelItem(1));
    indexes->indexTableViewDoubleClicked();
    QDialog *const editor = sheet();
    save(editor, folder, "designer-index");
    editor->findChild<QCheckBox *>()->toggle();
    for (QPushButton *const button : editor->findChildren<QPushButton *>()) {
        if (button->isDefault())
            button->click();
    }
    waitFor("preview", [&] { return QApplication::activeModalWidget() != editor; });
    saveSheet(folder, "designer-index-preview");
    editor->reject();
    indexes->handleDeleteIndex();
    saveSheet(folder, "designer-index-drop");
}

void showDialogs(MainWindow &window, MSSQLTableDesignerViewController &designer, const QString &folder)
{
    auto *const keys = page<MSSQLTableListForeignKeysViewController>(designer);
    waitFor("key", [&] { return keys->list()->topLevelItemCount() > 0; });
    keys->list()->setCurrentItem(keys->list()->topLevelItem(0));
    keys->editSelected();
    saveSheet(folder, "designer-key");
    keys->dropSelected();
    saveSheet(folder, "designer-key-drop");

    auto *const columns = page<MSSQLTableColumnDesignerViewController>(designer);
    columns->grid()->setCurrentIndex(columns->grid()->model()->index(2, MSSQLColumnGridModel::Field));
    columns->handleDeleteColumn();
    saveSheet(folder, "designer-column-drop");
    columns->grid()->model()->setData(columns->grid()->model()->index(2, MSSQLColumnGridModel::Default),
                                      QStringLiteral("no such function()"));
    saveSheet(folder, "designer-error");

    const auto settings = shopSettings(window);
    (new MSSQLCreateTableWindowController(settings, &window))->beginSheet({});
    saveSheet(folder, "designer-create");
    (new MSSQLRenameTableWindowController({QStringLiteral("dbo"), QStringLiteral("Orders")}, settings,
                                          &window))
        ->beginSheet({});
    saveSheet(folder, "designer-rename");
}

} // namespace

void showDesigner(MainWindow &window, const QString &folder)
{
    MSSQLTableDesignerViewController::open(QStringLiteral("dbo"), QStringLiteral("Orders"),
                                           shopSettings(window), window);
    auto *const designer = qobject_cast<MSSQLTableDesignerViewController *>(window.currentDocument());
    QTabWidget *const tabs = designer->tabs();
    for (int i = 0; i < tabs->count(); ++i) {
        tabs->setCurrentIndex(i);
        QTest::qWait(LoadingTime);
        save(&window, folder, qPrintable(QStringLiteral("designer-") + tabs->widget(i)->objectName()));
    }
    showIndexes(*designer, folder);
    showDialogs(window, *designer, folder);
}
