#include "EditingScreenshots.h"

#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Query/QueryTab.h"
#include "Screenshot.h"
#include "UI/ResultEditing/KNApplyRowChanges.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/ResultEditing/KNValueEditor.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "UI/RowEditing/KNDateField.h"
#include "UI/Workspace/KNQueryPreviewDialog.h"

#include <QCalendarWidget>
#include <QTest>

using Screenshot::save;
using Screenshot::waitFor;

/// A result with a changed value, a deleted row and a new one, and the statements of these.
void showEditing(MainWindow &window, const QString &folder)
{
    window.newQuery();
    auto *const tab = qobject_cast<QueryTab *>(window.currentDocument());
    tab->setText(
        QStringLiteral("USE shop; SELECT ProductId, Sku, Name, Price, Rating, AddedAt FROM dbo.Products;"));
    tab->run();
    waitFor("editable result", [&] {
        KNResultEditing *const editing = tab->resultsPane()->editing();
        return !tab->isRunning() && editing && editing->isEditable();
    });
    KNResultEditing &editing = *tab->resultsPane()->editing();
    KNResultTableModel &model = editing.model();
    editing.setText(model.index(1, 2), QStringLiteral("Fountain pen, blue"));
    editing.setText(model.index(1, 3), QStringLiteral("52.90"));
    editing.setNull({model.index(3, 4)});
    editing.removeRows({5});
    editing.addRow();
    editing.setText(model.index(model.rowCount() - 1, 0), QStringLiteral("900"));
    editing.setText(model.index(model.rowCount() - 1, 2), QStringLiteral("Sealing wax"));
    KNResultGridView &grid = *tab->resultsPane()->section(0)->grid();
    grid.selectionModel()->setCurrentIndex(model.index(1, 2), QItemSelectionModel::ClearAndSelect);
    QTest::qWait(50);
    save(&window, folder, "editing");
    KNApplyRowChanges(&grid, editing);
    QTest::qWait(100);
    auto *const dialog = grid.findChild<KNQueryPreviewDialog *>();
    save(dialog, folder, "editing-preview");
    dialog->reject();
    editing.discard();
    QTest::qWait(50);
    window.tabs()->closeDocument(tab);
}

/// A value in a window of its own, and a date with its calendar.
void showValueEditing(MainWindow &window, const QString &folder)
{
    window.newQuery();
    auto *const tab = qobject_cast<QueryTab *>(window.currentDocument());
    tab->setText(QStringLiteral("USE shop; SELECT ProductId, Name, AddedAt FROM dbo.Products;"));
    tab->run();
    waitFor("editable result", [&] {
        KNResultEditing *const editing = tab->resultsPane()->editing();
        return !tab->isRunning() && editing && editing->isEditable();
    });
    KNResultEditing &editing = *tab->resultsPane()->editing();
    KNResultTableModel &model = editing.model();
    KNResultGridView &grid = *tab->resultsPane()->section(0)->grid();
    auto *const editor = new KNValueEditor(editing, model.index(0, 1), &window);
    editor->beginSheet({});
    QTest::qWait(100);
    save(editor, folder, "value-editor");
    editor->reject();
    grid.setFocus();
    grid.setCurrentIndex(model.index(1, 2));
    grid.edit(model.index(1, 2));
    QTest::qWait(50);
    save(&window, folder, "date-field");
    if (auto *const field = grid.findChild<KNDateField *>()) {
        QCalendarWidget *const calendar = field->openCalendar();
        QTest::qWait(50);
        save(calendar, folder, "calendar");
        calendar->close();
        QTest::keyClick(field, Qt::Key_Escape);
    }
    window.tabs()->closeDocument(tab);
}
