#include "RowEditing/KNRowEdits.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

using Ids = QList<KNRowEdits::RowId>;

const KNValue one(1);
const KNValue two(2);

} // namespace

TEST(RowEdits, KeepChangesByRow)
{
    KNRowEdits edits;
    EXPECT_TRUE(edits.isEmpty());
    edits.setValue(7, 0, two, one);
    edits.setValue(3, 1, KNValue(), one);
    const auto added = edits.addRow();
    EXPECT_EQ(edits.changedRows(), (Ids{3, 7, added}));
    EXPECT_EQ(edits.changeCount(), 3);
    EXPECT_EQ(edits.row(7)->values.value(0), two);
    EXPECT_TRUE(edits.row(3)->values.contains(1));
    EXPECT_EQ(edits.row(4), nullptr);
}

TEST(RowEdits, EndWithTheStoredValue)
{
    KNRowEdits edits;
    edits.setValue(0, 0, two, one);
    edits.setValue(0, 0, one, one);
    EXPECT_TRUE(edits.isEmpty());
}

TEST(RowEdits, KeepAnEnteredNullInANewRow)
{
    KNRowEdits edits;
    const auto row = edits.addRow();
    edits.setValue(row, 2, KNValue(), KNValue());
    EXPECT_TRUE(edits.row(row)->values.contains(2));
}

TEST(RowEdits, ForgetADeletedNewRowAndMarkAStoredOne)
{
    KNRowEdits edits;
    const auto first = edits.addRow();
    const auto second = edits.addRow();
    EXPECT_NE(first, second);
    edits.setValue(5, 0, two, one);
    edits.remove(first);
    edits.remove(5);
    EXPECT_EQ(edits.newRows(), Ids{second});
    EXPECT_TRUE(edits.row(5)->isDeleted);
    EXPECT_TRUE(edits.row(5)->values.isEmpty());
    EXPECT_EQ(edits.changedRows(), (Ids{5, second}));
}

TEST(RowEdits, UndoWholeSteps)
{
    KNRowEdits edits;
    EXPECT_FALSE(edits.undo());
    edits.beginStep();
    edits.setValue(0, 0, two, one);
    edits.beginStep();
    edits.remove(0);
    edits.addRow();
    EXPECT_TRUE(edits.undo());
    EXPECT_FALSE(edits.row(0)->isDeleted);
    EXPECT_TRUE(edits.newRows().isEmpty());
    EXPECT_TRUE(edits.undo());
    EXPECT_TRUE(edits.isEmpty());
    EXPECT_FALSE(edits.canUndo());
}

TEST(RowEdits, LimitTheSteps)
{
    KNRowEdits edits;
    for (int i = 0; i < KNRowEdits::MostSteps + 20; ++i) {
        edits.beginStep();
        edits.setValue(i, 0, two, one);
    }
    int undone = 0;
    while (edits.undo())
        ++undone;
    EXPECT_EQ(undone, KNRowEdits::MostSteps);
    EXPECT_EQ(edits.changeCount(), 20);
}
