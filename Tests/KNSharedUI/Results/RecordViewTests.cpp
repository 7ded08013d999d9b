#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"
#include "Support/WindowTesting.h"
#include "UI/Results/KNRecordView.h"
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNValueViewer.h"

#include <QShortcut>
#include <QTableView>

using namespace ResultTesting;
using namespace WindowTesting;

namespace {

class TypeHelper : public ResultSetViewControllerHelper
{
    QString typeNameForColumn(qsizetype column) const override
    {
        return column == 0 ? QStringLiteral("int") : QStringLiteral("nvarchar");
    }
};

class Recorded
{
public:
    Recorded()
        : model(result({QStringLiteral("id"), QStringLiteral("name"), QString()},
                       {{KNValue(1), text("Ada"), KNValue()},
                        {KNValue(2), text("Bob"), text("x")},
                        {KNValue(3), text("Cleo"), text("y")}}),
                std::make_shared<TypeHelper>())
        , section(QStringLiteral("Result 1"), model, FakeDatabase::Settings(m_server))
        , grid(*section.grid())
        , record(*section.recordView())
    {
        model.showPublishedRows();
        section.updateCaption();
        section.resize(900, 400);
        section.show();
        QApplication::setActiveWindow(&section);
        grid.setFocus();
        grid.setCurrentIndex(model.index(1, 1));
    }
    /// The form, line by line.
    QStringList lines() const
    {
        QStringList lines;
        const QAbstractItemModel &form = *record.table()->model();
        for (int line = 0; line < form.rowCount(); ++line) {
            QStringList fields;
            for (int field = 0; field < form.columnCount(); ++field)
                fields.append(form.index(line, field).data().toString());
            lines.append(fields.join(u'|'));
        }
        return lines;
    }

private:
    FakeDatabase::Server m_server;

public:
    KNResultTableModel model;
    KNResultSection section;
    KNResultGridView &grid;
    KNRecordView &record;
};

} // namespace

TEST(RecordView, ShowsNameTypeAndValueOfTheCurrentRow)
{
    Recorded shown;
    EXPECT_FALSE(shown.record.isVisible());
    QTest::keyClick(&shown.grid, Qt::Key_F4);
    ASSERT_TRUE(shown.record.isVisible());
    EXPECT_TRUE(shown.record.table()->hasFocus());
    EXPECT_EQ(shown.record.caption(), QStringLiteral("Row 2 of 3"));
    EXPECT_EQ(shown.lines(), (QStringList{QStringLiteral("id|int|2"), QStringLiteral("name|nvarchar|Bob"),
                                          QStringLiteral("(no name)|nvarchar|x")}));
    EXPECT_EQ(shown.record.table()->currentIndex().row(), 1) << "the column of the cursor";
    EXPECT_EQ(namelessWidgets(shown.section), QStringList());
}

TEST(RecordView, FollowsTheGridAndMovesIt)
{
    Recorded shown;
    shown.record.open();
    shown.grid.setCurrentIndex(shown.model.index(0, 2));
    EXPECT_EQ(shown.record.caption(), QStringLiteral("Row 1 of 3"));
    EXPECT_EQ(shown.lines().last(), QStringLiteral("(no name)|nvarchar|NULL"));
    QTest::keyClick(shown.record.table(), Qt::Key_Down, Qt::AltModifier);
    EXPECT_EQ(shown.grid.currentIndex(), shown.model.index(1, 2));
    EXPECT_EQ(shown.lines().last(), QStringLiteral("(no name)|nvarchar|x"));
    shown.record.showNextRow();
    shown.record.showNextRow();
    EXPECT_EQ(shown.record.caption(), QStringLiteral("Row 3 of 3")) << "it is the last";
    QTest::keyClick(shown.record.table(), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(shown.record.caption(), QStringLiteral("Row 2 of 3"));
    QTest::keyClick(shown.record.table(), Qt::Key_Up);
    EXPECT_EQ(shown.grid.currentIndex(), shown.model.index(1, 1)) << "another value of the row";
    ASSERT_TRUE(shown.model.arrange({.filterText = QStringLiteral("Cleo")}));
    ASSERT_TRUE(waitFor([&] { return !shown.model.isArranging(); }));
    EXPECT_EQ(shown.lines().at(1), QStringLiteral("name|nvarchar|Cleo"));
    shown.grid.columns()->hide(0);
    EXPECT_EQ(shown.lines().size(), 2);
}

TEST(RecordView, ClosesWithEscapeAndOpensValues)
{
    Recorded shown;
    int escapes = 0;
    QShortcut cancel(QKeySequence(Qt::Key_Escape), &shown.section);
    QObject::connect(&cancel, &QShortcut::activated, &shown.section, [&] { ++escapes; });
    shown.record.open();
    Q_EMIT shown.record.table()->activated(shown.record.table()->currentIndex());
    auto *const viewer = shown.section.findChild<KNValueViewer *>();
    ASSERT_NE(viewer, nullptr);
    ASSERT_TRUE(waitFor([&] { return !viewer->isLoading(); }));
    EXPECT_EQ(viewer->text(), QStringLiteral("Bob"));
    delete viewer;
    QApplication::setActiveWindow(&shown.section);
    shown.record.table()->setFocus();
    QTest::keyClick(shown.record.table(), Qt::Key_Escape);
    EXPECT_FALSE(shown.record.isVisible());
    EXPECT_TRUE(shown.grid.hasFocus());
    EXPECT_EQ(escapes, 0);
}
