#include "Support/WatchedApplication.h"
#include "UI/TableDesigner/MSSQLColumnFilter.h"
#include "UI/TableDesigner/MSSQLEditForeignKeyWindowController.h"
#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"
#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableListForeignKeysViewController.h"
#include "VantorMSSQL/Dialogs/DesignerTest.h"

#include <QComboBox>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableWidget>

namespace {

constexpr int ManyColumns = 1024; // as many as a table may have

/// No event may hold the UI thread up.
class WideTable : public DesignerTest
{
protected:
    WideTable()
    {
        QStringList definitions;
        for (int i = 1; i <= ManyColumns; ++i)
            definitions.append(
                KNFormat("column_%d nvarchar(20) NULL CONSTRAINT DF_%d DEFAULT N'text'", i, i));
        run(KNFormat("CREATE TABLE dbo.Wide (%@)", definitions.join(QStringLiteral(", "))));
        WatchedApplication::instance().beginWatch();
        open(QStringLiteral("dbo"), QStringLiteral("Wide"));
    }
    ~WideTable() override
    {
        const WatchedApplication::Call &longest = WatchedApplication::instance().longestCall();
        RecordProperty("longest",
                       KNFormat("%f ms, %s", longest.milliseconds, longest.what.c_str()).toStdString());
        EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
    }
};

} // namespace

TEST_F(WideTable, OpensAndScrollsWithoutHoldingTheWindowUp)
{
    ASSERT_EQ(grid()->model()->rowCount(), ManyColumns);
    for (int row = 0; row < ManyColumns; row += 10) {
        QTest::keyClick(grid(), Qt::Key_PageDown);
        QTest::qWait(0);
    }
    EXPECT_EQ(grid()->currentIndex().row(), ManyColumns - 1);
    QTest::keyClick(grid(), Qt::Key_Home, Qt::ControlModifier);
    grid()->verticalScrollBar()->setValue(grid()->verticalScrollBar()->maximum());
    QTest::qWait(0);
}

TEST_F(WideTable, EditsACellAndLoadsAgainWithoutHoldingTheWindowUp)
{
    grid()->setFocus();
    grid()->setCurrentIndex(grid()->model()->index(ManyColumns - 1, Column::Type));
    QTest::keyClick(grid(), Qt::Key_F2);
    auto *const box = grid()->findChild<QComboBox *>();
    ASSERT_NE(box, nullptr);
    box->setEditText(QStringLiteral("nvarchar(40)"));
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(WindowTesting::waitFor([&] { return m_designer->session().executedScripts().size() == 1; }));
    finish();
    EXPECT_EQ(cells(Column::Type).last(), QStringLiteral("nvarchar(40)"));
}

TEST_F(WideTable, FiltersByNameWithoutHoldingTheWindowUp)
{
    const auto shown = [&] {
        QStringList names;
        for (int row = 0; row < grid()->model()->rowCount(); ++row) {
            if (!grid()->isRowHidden(row))
                names.append(grid()->model()->index(row, Column::Field).data().toString());
        }
        return names;
    };
    auto *const filter = m_designer->findChild<MSSQLColumnFilter *>();
    for (const char character : {'N', '_', '1', '0', '2'})
        QTest::keyClick(filter, character);
    const QStringList expected{QStringLiteral("column_102"),  QStringLiteral("column_1020"),
                               QStringLiteral("column_1021"), QStringLiteral("column_1022"),
                               QStringLiteral("column_1023"), QStringLiteral("column_1024")};
    EXPECT_EQ(shown(), expected);
    columns()->reload();
    finish();
    EXPECT_EQ(shown(), expected) << "the filter stays";
    filter->clear();
    EXPECT_EQ(shown().size(), ManyColumns);
}

TEST_F(WideTable, ChoosesIndexColumnsWithoutHoldingTheWindowUp)
{
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>();
    indexes->addNewIndex();
    auto *const editor = m_designer->findChild<MSSQLEditIndexWindowController *>();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(WindowTesting::settle());
    editor->findChild<QLineEdit *>()->setText(QStringLiteral("IX"));
    editor->endSheetWithReturnCode(0);
}

TEST_F(WideTable, PairsColumnsOfAForeignKeyWithoutHoldingTheWindowUp)
{
    page<MSSQLTableListForeignKeysViewController>()->addNewKey();
    auto *const editor = m_designer->findChild<MSSQLEditForeignKeyWindowController *>();
    ASSERT_TRUE(WindowTesting::waitFor([&] { return editor->isLoaded(); }));
    auto *const tables = editor->findChild<QComboBox *>();
    tables->setCurrentIndex(tables->findText(QStringLiteral("dbo.Wide")));
    EXPECT_TRUE(WindowTesting::settle());
    for (QPushButton *const button : editor->findChildren<QPushButton *>()) {
        if (button->text() == QStringLiteral("&Add Pair"))
            QTest::mouseClick(button, Qt::LeftButton);
    }
    auto *const pairs = editor->findChild<QTableWidget *>();
    ASSERT_EQ(pairs->rowCount(), 1);
    auto *const referenced = qobject_cast<QComboBox *>(pairs->cellWidget(0, 1));
    EXPECT_EQ(referenced->count(), ManyColumns + 1);
    referenced->showPopup();
    QTest::qWait(50);
    referenced->hidePopup();
}
