#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNColumnFilterDialog.h"
#include "UI/Results/KNResultColumnMenu.h"
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultFilterBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"

#include <QCheckBox>
#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

/// A result of 20 rows and eight columns: "c0" with a number, the others with "<column>-<row modulo 3>".
KNDatabaseResultSetPtr wideRows()
{
    QStringList names;
    QList<KNRow> rows(20);
    for (int column = 0; column < 8; ++column) {
        names.append(QStringLiteral("c%1").arg(column));
        for (int row = 0; row < rows.size(); ++row)
            rows[row].append(column == 0 ? KNValue(row)
                                         : KNValue(QStringLiteral("%1-%2").arg(column).arg(row % 3)));
    }
    return result(names, rows);
}

class Columned
{
public:
    Columned()
        : model(wideRows(), std::make_shared<ResultSetViewControllerHelper>())
        , section(QStringLiteral("Result 1"), model, FakeDatabase::Settings(m_server))
        , grid(*section.grid())
        , columns(*grid.columns())
    {
        model.showPublishedRows();
        section.updateCaption();
        section.resize(600, 400);
        section.show();
        QApplication::setActiveWindow(&section);
        grid.setFocus();
        for (int column = 0; column < 8; ++column)
            columns.header()->resizeSection(column, 150);
    }

    QAction *action(int column, const char *text)
    {
        for (QAction *const each : section.columnMenu(column)->actions()) {
            if (each->text().remove(u'&') == QString::fromUtf8(text))
                return each;
        }
        return nullptr;
    }
    void choose(int column, const char *text)
    {
        QAction *const chosen = action(column, text);
        ASSERT_NE(chosen, nullptr) << text;
        ASSERT_TRUE(chosen->isEnabled()) << text;
        chosen->trigger();
        EXPECT_TRUE(waitFor([&] { return !model.isArranging(); }));
    }
    QString first(int column) const { return model.cell(0, column).text; }

private:
    FakeDatabase::Server m_server;

public:
    KNResultTableModel model;
    KNResultSection section;
    KNResultGridView &grid;
    KNResultColumns &columns;
};

} // namespace

TEST(ColumnMenu, SortsAndClearsTheSorting)
{
    Columned shown;
    EXPECT_FALSE(shown.action(0, "Clear Sorting")->isEnabled());
    shown.choose(0, "Sort Descending");
    EXPECT_EQ(shown.first(0), QStringLiteral("19"));
    EXPECT_TRUE(shown.action(0, "Sort Descending")->isChecked());
    shown.choose(0, "Sort Ascending");
    EXPECT_EQ(shown.first(0), QStringLiteral("0"));
    shown.choose(1, "Sort Ascending");
    shown.choose(1, "Clear Sorting");
    EXPECT_EQ(shown.section.caption(), QStringLiteral("Result 1: 20 rows"));
}

TEST(ColumnMenu, OpensFromTheHeader)
{
    Columned shown;
    int column = -1;
    QObject::connect(&shown.columns, &KNResultColumns::menuRequested, &shown.section,
                     [&](int requested) { column = requested; });
    QHeaderView *const header = shown.columns.header();
    const QPoint position(header->sectionViewportPosition(2) + 20, 5);
    QContextMenuEvent event(QContextMenuEvent::Mouse, position, header->mapToGlobal(position));
    QApplication::sendEvent(header->viewport(), &event);
    EXPECT_EQ(column, 2);
    EXPECT_TRUE(shown.section.columnMenu(2)->isVisible());
    shown.section.columnMenu(2)->close();
}

TEST(ColumnMenu, CopiesTheName)
{
    Columned shown;
    shown.choose(3, "Copy Name");
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("c3"));
}

TEST(ColumnMenu, SizesAColumnToItsContents)
{
    Columned shown;
    shown.choose(3, "Size to Contents");
    EXPECT_LT(shown.columns.width(3), 150);
    EXPECT_EQ(shown.columns.width(4), 150);
    shown.choose(3, "Size All Columns to Contents");
    EXPECT_LT(shown.columns.width(4), 150);
}

TEST(HiddenColumns, AreSkippedByCursorCopiesAndAssistivePrograms)
{
    Columned shown;
    shown.choose(1, "Hide Column");
    shown.choose(3, "Hide Column");
    EXPECT_EQ(shown.grid.shownColumns(), (QList<int>{0, 2, 4, 5, 6, 7}));
    shown.grid.setCurrentIndex(shown.model.index(0, 0));
    QTest::keyClick(&shown.grid, Qt::Key_Right);
    EXPECT_EQ(shown.grid.currentIndex().column(), 2);
    QTest::keyClick(&shown.grid, Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(shown.grid.selectedRows().columns, (QList<qsizetype>{2, 4}));
    EXPECT_EQ(shown.grid.selectedCells().at(0).columns, (QList<qsizetype>{2, 4}));
    QTest::keyClick(&shown.grid, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(shown.grid.selectedRows().columns, (QList<qsizetype>{0, 2, 4, 5, 6, 7}));
    QAccessibleInterface *const table = QAccessible::queryAccessibleInterface(&shown.grid);
    EXPECT_EQ(table->tableInterface()->columnCount(), 6);
    EXPECT_EQ(table->tableInterface()->columnDescription(1), QStringLiteral("c2"));
    EXPECT_EQ(table->tableInterface()->cellAt(0, 1)->text(QAccessible::Name), QStringLiteral("2-0"));
}

TEST(HiddenColumns, AreExportedAndComeBack)
{
    Columned shown;
    shown.choose(1, "Hide Column");
    EXPECT_EQ(shown.model.shownRows().columns.size(), 8);
    QMenu *const hidden = shown.action(2, "Show Hidden Columns")->menu();
    ASSERT_EQ(hidden->actions().size(), 3) << "all, a separator and the column";
    EXPECT_EQ(hidden->actions().last()->text(), QStringLiteral("c1"));
    hidden->actions().first()->trigger();
    EXPECT_EQ(shown.columns.hidden(), QList<int>());
    EXPECT_EQ(shown.columns.width(1), 150);
}

TEST(HiddenColumns, LeaveOneColumn)
{
    Columned shown;
    for (int column = 0; column < 7; ++column)
        shown.choose(column, "Hide Column");
    EXPECT_FALSE(shown.action(7, "Hide Column")->isEnabled());
    shown.columns.hide(7);
    EXPECT_EQ(shown.grid.shownColumns(), QList<int>{7});
}

TEST(FrozenColumns, StayWhileTheOthersScroll)
{
    Columned shown;
    shown.choose(1, "Freeze Columns up to This One");
    EXPECT_EQ(shown.columns.frozenWidth(), 300);
    shown.grid.horizontalScrollBar()->setValue(200);
    const auto left = [&](int column) { return shown.grid.visualRect(shown.model.index(0, column)).left(); };
    EXPECT_EQ(left(0), 0);
    EXPECT_EQ(left(1), 150);
    EXPECT_EQ(left(2), 100);
    EXPECT_EQ(shown.grid.indexAt({200, 5}).column(), 1);
    EXPECT_EQ(shown.grid.indexAt({310, 5}).column(), 3);
    shown.grid.setCurrentIndex(shown.model.index(0, 2));
    EXPECT_EQ(left(2), 300) << "scrolled out from below the frozen columns";
    shown.choose(5, "Unfreeze Columns");
    EXPECT_EQ(left(0), -shown.grid.horizontalScrollBar()->value());
}

TEST(FrozenColumns, TakeClicksOnTheirHeaders)
{
    Columned shown;
    shown.columns.freezeUpTo(0);
    shown.grid.horizontalScrollBar()->setValue(400);
    const QHeaderView *frozen = nullptr;
    for (const QHeaderView *const header : shown.grid.findChildren<QHeaderView *>()) {
        if (header != shown.columns.header())
            frozen = header;
    }
    ASSERT_TRUE(frozen && frozen->isVisible());
    EXPECT_EQ(frozen->width(), 150);
    QTest::mouseClick(frozen->viewport(), Qt::LeftButton, {}, {20, 5});
    EXPECT_EQ(shown.grid.selectedRows().columns, QList<qsizetype>{0});
    EXPECT_EQ(shown.grid.selectedRows().rowCount(), 20);
}

TEST(FrozenColumns, AreSelectedByKeyboardFromBelow)
{
    Columned shown;
    shown.columns.freezeUpTo(1);
    shown.grid.setCurrentIndex(shown.model.index(0, 2));
    QTest::keyClick(&shown.grid, Qt::Key_End, Qt::ShiftModifier);
    EXPECT_EQ(shown.grid.selectedRows().columns, (QList<qsizetype>{2, 3, 4, 5, 6, 7}));
}

TEST(FrozenColumns, ScrollWhenTheyWouldFillTheGrid)
{
    Columned shown;
    shown.columns.freezeUpTo(6);
    EXPECT_EQ(shown.columns.frozenWidth(), 0);
    shown.section.resize(1600, 400);
    EXPECT_EQ(shown.columns.frozenWidth(), 1050);
}

TEST(ResultColumns, AreRestored)
{
    Columned shown;
    shown.columns.hide(4);
    shown.columns.freezeUpTo(2);
    shown.columns.header()->resizeSection(0, 77);
    const QByteArray state = shown.columns.state();
    Columned other;
    other.columns.restoreState(state);
    EXPECT_EQ(other.columns.hidden(), QList<int>{4});
    EXPECT_EQ(other.columns.lastFrozen(), 2);
    EXPECT_EQ(other.columns.width(0), 77);
    EXPECT_EQ(other.columns.frozenWidth(), 377);
}

TEST(ColumnFilter, ChoosesValuesAndCombinesWithTheFilterBar)
{
    Columned shown;
    shown.choose(1, "Filter This Column…");
    auto *dialog = shown.section.findChild<KNColumnFilterDialog *>();
    ASSERT_NE(dialog, nullptr);
    ASSERT_TRUE(waitFor([&] { return !dialog->isLoading(); }));
    ASSERT_EQ(dialog->values()->count(), 3);
    EXPECT_EQ(dialog->allValues()->checkState(), Qt::Checked);
    dialog->values()->item(0)->setCheckState(Qt::Unchecked);
    dialog->values()->item(2)->setCheckState(Qt::Unchecked);
    EXPECT_EQ(dialog->allValues()->checkState(), Qt::PartiallyChecked);
    QTest::keyClick(dialog, Qt::Key_Return);
    ASSERT_TRUE(waitFor([&] { return shown.model.rowCount() == 7; }));
    EXPECT_EQ(shown.first(1), QStringLiteral("1-1"));
    EXPECT_EQ(shown.section.caption(), QStringLiteral("Result 1: 7 of 20 rows"));
    EXPECT_EQ(shown.model.headerData(1, Qt::Horizontal, Qt::AccessibleTextRole).toString(),
              QStringLiteral("c1, filtered"));
    EXPECT_FALSE(shown.model.headerData(1, Qt::Horizontal, Qt::DecorationRole).isNull());
    EXPECT_TRUE(shown.model.headerData(2, Qt::Horizontal, Qt::DecorationRole).isNull());
    shown.section.openFilter();
    shown.section.filterBar()->field()->setText(QStringLiteral("19"));
    ASSERT_TRUE(waitFor([&] { return shown.model.rowCount() == 1; }));
    EXPECT_EQ(shown.first(0), QStringLiteral("19"));
    shown.section.filterBar()->showAllRows();
    EXPECT_EQ(shown.model.rowCount(), 20);
}

TEST(ColumnFilter, KeepsTextAndIsRemoved)
{
    Columned shown;
    shown.section.setColumnFilter({.column = 0, .text = QStringLiteral("1")});
    ASSERT_TRUE(waitFor([&] { return shown.model.rowCount() == 11; }));
    shown.section.filterColumn(0);
    auto *const dialog = shown.section.findChild<KNColumnFilterDialog *>();
    EXPECT_EQ(dialog->field()->text(), QStringLiteral("1"));
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_EQ(shown.model.rowCount(), 11);
    shown.choose(0, "Remove Filter of This Column");
    EXPECT_EQ(shown.model.rowCount(), 20);
    EXPECT_FALSE(shown.action(0, "Remove Filter of This Column")->isEnabled());
}

TEST(ColumnFilter, AsksForATextWhenThereAreTooManyValues)
{
    KNResultTableModel model(numberedRows(5000), std::make_shared<ResultSetViewControllerHelper>());
    model.showPublishedRows();
    KNColumnFilterDialog dialog(model, 0, nullptr);
    dialog.show();
    ASSERT_TRUE(waitFor([&] { return !dialog.isLoading(); }));
    EXPECT_EQ(dialog.remark(), QStringLiteral("The column has more than 1,000 values. Enter a text that the "
                                              "values to show contain."));
    EXPECT_FALSE(dialog.values()->isVisible());
    EXPECT_EQ(namelessWidgets(dialog), QStringList());
    EXPECT_TRUE(dialog.filter().isPlain());
}
