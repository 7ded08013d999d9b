#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"
#include "Support/WindowTesting.h"
#include "UI/KNPreferences.h"
#include "UI/Results/KNResultGridView.h"

#include <QHeaderView>

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

/// A focused grid and what assistive programs see of it.
class ReadGrid
{
public:
    explicit ReadGrid(const KNDatabaseResultSetPtr &result)
        : model(result, std::make_shared<ResultSetViewControllerHelper>())
        , view(model)
    {
        model.showPublishedRows();
        view.resize(600, 400);
        view.show();
        QApplication::setActiveWindow(&view);
        view.setFocus();
    }

    QAccessibleInterface *object() { return QAccessible::queryAccessibleInterface(&view); }
    QAccessibleTableInterface &table() { return *object()->tableInterface(); }
    QString name(int row, int column) { return table().cellAt(row, column)->text(QAccessible::Name); }

    KNResultTableModel model;
    KNResultGridView view;
};

KNDatabaseResultSetPtr people()
{
    return result({QStringLiteral("id"), QStringLiteral("name"), QString()},
                  {{KNValue(1), text("Ada"), KNValue()}, {KNValue(2), text(""), text("NULL")}});
}

} // namespace

TEST(GridAccessibility, ExposesRowsColumnsHeadersAndCells)
{
    ReadGrid grid(people());
    EXPECT_EQ(grid.object()->role(), QAccessible::Table);
    EXPECT_EQ(grid.object()->text(QAccessible::Name), QStringLiteral("Rows of the result"));
    EXPECT_EQ(grid.table().rowCount(), 2);
    EXPECT_EQ(grid.table().columnCount(), 3);
    EXPECT_EQ(grid.table().columnDescription(1), QStringLiteral("name"));
    EXPECT_EQ(grid.table().columnDescription(2), QStringLiteral("(no name)"));
    EXPECT_EQ(grid.table().rowDescription(1), QStringLiteral("2"));
    EXPECT_EQ(grid.name(0, 0), QStringLiteral("1"));
    EXPECT_EQ(grid.name(0, 1), QStringLiteral("Ada"));
    EXPECT_EQ(grid.name(1, 1), QString());
    EXPECT_EQ(grid.table().cellAt(2, 0), nullptr);
    EXPECT_EQ(grid.table().cellAt(0, 3), nullptr);
    const QAccessibleTableCellInterface *const cell = grid.table().cellAt(1, 2)->tableCellInterface();
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->rowIndex(), 1);
    EXPECT_EQ(cell->columnIndex(), 2);
    EXPECT_EQ(cell->table(), grid.object());
    EXPECT_EQ(cell->columnHeaderCells().value(0)->text(QAccessible::Name), QStringLiteral("(no name)"));
    EXPECT_EQ(cell->rowHeaderCells().value(0)->text(QAccessible::Name), QStringLiteral("2"));
}

TEST(GridAccessibility, ReadsNullWhateverItsPreferredText)
{
    const KNPreferences before = KNPreferences::current();
    KNPreferences preferences = before;
    preferences.nullText.clear();
    preferences.save();
    ReadGrid grid(people());
    EXPECT_EQ(grid.name(0, 2), QStringLiteral("NULL"));
    before.save();
}

TEST(GridAccessibility, ListsItsCellsAsChildren)
{
    ReadGrid grid(people());
    ASSERT_EQ(grid.object()->childCount(), 3 * 4) << "with headers";
    for (int child = 0; child < grid.object()->childCount(); ++child) {
        QAccessibleInterface *const cell = grid.object()->child(child);
        ASSERT_NE(cell, nullptr);
        EXPECT_EQ(grid.object()->indexOfChild(cell), child);
        EXPECT_EQ(cell->parent(), grid.object());
    }
    EXPECT_EQ(grid.object()->child(5)->text(QAccessible::Name), QStringLiteral("1"));
    EXPECT_EQ(grid.object()->child(12), nullptr);
}

TEST(GridAccessibility, FindsCellsByPosition)
{
    ReadGrid grid(people());
    QAccessibleInterface *const cell = grid.table().cellAt(1, 1);
    const QPoint centre = cell->rect().center();
    EXPECT_TRUE(QRect(grid.view.viewport()->mapToGlobal(QPoint(0, 0)), grid.view.viewport()->size())
                    .contains(centre));
    EXPECT_EQ(grid.object()->childAt(centre.x(), centre.y()), cell);
}

TEST(GridAccessibility, ReportsCurrentCellAndSelection)
{
    ReadGrid grid(people());
    grid.view.setCurrentIndex(grid.model.index(1, 1));
    EXPECT_EQ(grid.object()->focusChild(), grid.table().cellAt(1, 1));
    EXPECT_TRUE(grid.table().cellAt(1, 1)->state().focused);
    EXPECT_TRUE(grid.table().cellAt(1, 1)->state().selected);
    EXPECT_FALSE(grid.table().cellAt(0, 1)->state().selected);
    EXPECT_EQ(grid.table().selectedCellCount(), 1);
    EXPECT_EQ(grid.table().selectedRows(), QList<int>());
    ASSERT_TRUE(grid.table().selectRow(0));
    EXPECT_EQ(grid.table().selectedRows(), QList<int>{0});
    EXPECT_EQ(grid.table().selectedRowCount(), 1);
    EXPECT_TRUE(grid.table().isRowSelected(0));
    ASSERT_TRUE(grid.table().selectColumn(2));
    EXPECT_EQ(grid.table().selectedColumns(), QList<int>{2});
    EXPECT_EQ(grid.table().selectedCells().size(), 2);
    ASSERT_TRUE(grid.table().unselectColumn(2));
    EXPECT_EQ(grid.table().selectedCellCount(), 0);
}

TEST(GridAccessibility, KeepsFewObjectsForMillionsOfCells)
{
    ReadGrid grid(numberedRows(1'000'000));
    QAccessibleInterface *const first = grid.table().cellAt(0, 0);
    const QAccessible::Id id = QAccessible::uniqueId(first);
    grid.view.selectAll();
    EXPECT_EQ(grid.table().selectedCellCount(), 2'000'000);
    EXPECT_EQ(grid.table().selectedRowCount(), 1'000'000);
    EXPECT_LE(grid.table().selectedCells().size(), 1000);
    EXPECT_LE(grid.table().selectedRows().size(), 1000);
    for (int row = 0; row < 3000; ++row)
        EXPECT_EQ(grid.name(row, 0), QString::number(row));
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr) << "it was requested too long ago";
}

TEST(GridAccessibility, OutlivesNeitherRowsNorGrid)
{
    auto grid = std::make_unique<ReadGrid>(numberedRows(10));
    QAccessibleInterface *const last = grid->table().cellAt(9, 0);
    EXPECT_TRUE(last->isValid());
    ASSERT_TRUE(grid->model.arrange({.filterText = QStringLiteral("row 1")}));
    ASSERT_TRUE(waitFor([&] { return !grid->model.isArranging(); }));
    EXPECT_FALSE(last->isValid());
    EXPECT_EQ(last->text(QAccessible::Name), QString());
    const QAccessible::Id id = QAccessible::uniqueId(grid->table().cellAt(0, 0));
    grid.reset();
    EXPECT_EQ(QAccessible::accessibleInterface(id), nullptr);
}

TEST(GridAccessibility, ReadsHowAColumnIsSorted)
{
    ReadGrid grid(numberedRows(3));
    ASSERT_TRUE(grid.model.arrange({.sortColumn = 0, .sortOrder = Qt::DescendingOrder}));
    ASSERT_TRUE(waitFor([&] { return !grid.model.isArranging(); }));
    EXPECT_EQ(grid.table().columnDescription(0), QStringLiteral("id, sorted descending"));
    EXPECT_EQ(grid.name(0, 0), QStringLiteral("2"));
}
