#include "Desktop/Main/MainWindowActions.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QMenu>
#include <QStatusBar>

namespace SurroundingTests {

/// The editor of a window, used with real keys.
class Surrounding : public testing::Test
{
protected:
    Surrounding()
    {
        window.show();
        window.activateWindow();
        window.newQuery();
        editor = DesktopTesting::currentQuery(window)->editor();
        editor->setFocus();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    void show(const char *text, KNRange selection)
    {
        editor->setWholeText(QString::fromUtf8(text));
        editor->selectRange(selection);
    }
    QMenu *menu() const { return qobject_cast<QMenu *>(QApplication::activePopupWidget()); }
    /// Opens the menu by its keys and presses the letter of an item.
    std::string surround(Qt::Key letter)
    {
        QTest::keyClick(editor, Qt::Key_K, Qt::ControlModifier);
        QTest::keyClick(editor, Qt::Key_S, Qt::ControlModifier);
        EXPECT_NE(menu(), nullptr);
        if (menu())
            QTest::keyClick(menu(), letter);
        return editor->wholeText().toStdString();
    }

    MainWindow window{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
    KNSQLEditor *editor = nullptr;
};

TEST_F(Surrounding, IndentsTheSelectedLines)
{
    show("IF 1 = 1\n  SELECT 1;\n\n  SELECT 2;\nSELECT 3;", {13, 15});
    EXPECT_EQ(surround(Qt::Key_B), "IF 1 = 1\n  BEGIN\n\t  SELECT 1;\n\n\t  SELECT 2;\n  END\nSELECT 3;");
    EXPECT_EQ(editor->textOfRange(editor->selectedRange()).toStdString(), "\t  SELECT 1;\n\n\t  SELECT 2;");
    editor->undo();
    EXPECT_EQ(editor->wholeText().toStdString(), "IF 1 = 1\n  SELECT 1;\n\n  SELECT 2;\nSELECT 3;");
    EXPECT_FALSE(editor->isUndoAvailable());
}

TEST_F(Surrounding, TakesTheLineOfTheCursor)
{
    show("SELECT 1;\r\nSELECT 2;\r\nSELECT 3;", {18, 0});
    EXPECT_EQ(surround(Qt::Key_T), "SELECT 1;\r\nBEGIN TRY\r\n\tSELECT 2;\r\nEND TRY\r\nBEGIN CATCH\r\n"
                                   "\tPRINT ERROR_MESSAGE();\r\nEND CATCH\r\nSELECT 3;");
    const KNRange cursor = editor->selectedRange();
    EXPECT_EQ(cursor.length, 0);
    EXPECT_EQ(editor->textOfRange({cursor.location, 2}).toStdString(), "2;");
}

TEST_F(Surrounding, BeginsABlockInAnEmptyLine)
{
    show("", {0, 0});
    EXPECT_EQ(surround(Qt::Key_B), "BEGIN\n\t\nEND");
    EXPECT_EQ(editor->selectedRange(), (KNRange{7, 0}));
}

TEST_F(Surrounding, KeepsStringsThatSpanLines)
{
    show("SELECT 'a\nb' /*\nc */;", {0, 21});
    EXPECT_EQ(surround(Qt::Key_B), "BEGIN\n\tSELECT 'a\nb' /*\n\tc */;\nEND");
}

TEST_F(Surrounding, RefusesLinesWithTheEndOfABatch)
{
    show("SELECT 1;\nGO\nSELECT 2;", {0, 20});
    QTest::keyClick(editor, Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(editor, Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(menu(), nullptr);
    EXPECT_EQ(editor->wholeText().toStdString(), "SELECT 1;\nGO\nSELECT 2;");
    EXPECT_EQ(window.statusBar()->currentMessage(),
              QStringLiteral("The lines contain the end of a batch and cannot be surrounded."));
}

} // namespace SurroundingTests
