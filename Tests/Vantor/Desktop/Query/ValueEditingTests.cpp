#include "UI/Editor/KNScintilla.h"
#include "UI/ResultEditing/KNValueEditor.h"
#include "UI/Results/KNValueViewer.h"
#include "UI/RowEditing/KNDateField.h"
#include "Vantor/Desktop/Query/ResultEditingTest.h"

#include <QCalendarWidget>

using WindowTesting::waitFor;

namespace {

class ValueEditing : public ResultEditingTest
{
protected:
    ~ValueEditing() override
    {
        execute("IF OBJECT_ID('dbo.LongValues') IS NOT NULL DROP TABLE dbo.LongValues");
    }

    /// A row with a text and with bytes, shown in the grid.
    void openValue(const QString &text, const char *bytes = "NULL")
    {
        execute("CREATE TABLE dbo.LongValues (id int NOT NULL PRIMARY KEY, v nvarchar(max) NULL, b "
                "varbinary(max) NULL)");
        execute(QString(q("INSERT INTO dbo.LongValues VALUES (1, ") + text + q(", ") + q(bytes) + q(")"))
                    .toUtf8()
                    .constData());
        open("SELECT id, v, b FROM dbo.LongValues");
    }
    KNValueEditor *valueEditor() const
    {
        KNValueEditor *found = nullptr;
        for (QWidget *const window : QApplication::topLevelWidgets()) {
            if (auto *const editor = qobject_cast<KNValueEditor *>(window); editor && !editor->closed())
                found = editor;
        }
        return found;
    }
    KNValue value(int column) const { return editing()->value(grid().model()->index(0, column)); }
    KNDateField *dateField(int row, int column)
    {
        tab->activateWindow(); // the platform of tests forgets it behind a popup
        EXPECT_TRUE(waitFor([this] { return tab->isActiveWindow(); }));
        select(row, column);
        press(Qt::Key_F2);
        return qobject_cast<KNDateField *>(QApplication::focusWidget());
    }
    void leaveRowsAtOnce(bool isPreviewed)
    {
        KNPreferences preferences = KNPreferences::current();
        preferences.sendsRowWhenLeft = true;
        preferences.previewsRowChanges = isPreviewed;
        preferences.save();
    }
};

} // namespace

TEST_F(ValueEditing, ReplacesTheDateWithACalendarAndKeepsEveryDigitBehindIt)
{
    execute("CREATE TABLE dbo.LongValues (id int NOT NULL PRIMARY KEY, d date NULL, t datetime2(7) NULL, o "
            "datetimeoffset(7) NULL)");
    execute("INSERT INTO dbo.LongValues VALUES (1, '2024-02-29', '2024-02-29 23:59:59.1234567', '2024-02-29 "
            "12:34:56.7654321 -03:30')");
    open("SELECT id, d, t, o FROM dbo.LongValues");
    for (int column = 1; column <= 3; ++column) {
        KNDateField *const field = dateField(0, column);
        ASSERT_TRUE(field) << column;
        EXPECT_EQ(field->date(), QDate(2024, 2, 29));
        QTest::keyClick(field, Qt::Key_Down, Qt::AltModifier);
        auto *const calendar = field->findChild<QCalendarWidget *>();
        ASSERT_TRUE(calendar);
        EXPECT_EQ(calendar->selectedDate(), QDate(2024, 2, 29));
        Q_EMIT calendar->activated(QDate(1, 1, 31));
        EXPECT_TRUE(field->hasFocus()) << "the editor was closed";
        QTest::keyClick(field, Qt::Key_Return);
        QTest::qWait(0);
    }
    applyAll();
    EXPECT_EQ(stored("SELECT CONVERT(char(10), d, 126) FROM dbo.LongValues"), q("0001-01-31"));
    EXPECT_EQ(stored("SELECT t FROM dbo.LongValues"), q("0001-01-31 23:59:59.1234567"));
    EXPECT_EQ(stored("SELECT CONVERT(varchar(40), o) FROM dbo.LongValues"),
              q("0001-01-31 12:34:56.7654321 -03:30"));
}

TEST_F(ValueEditing, OpensAnEmptyCalendarForNull)
{
    execute("CREATE TABLE dbo.LongValues (id int NOT NULL PRIMARY KEY, d date NULL)");
    execute("INSERT INTO dbo.LongValues VALUES (1, NULL)");
    open("SELECT id, d FROM dbo.LongValues");
    KNDateField *const field = dateField(0, 1);
    ASSERT_TRUE(field);
    QCalendarWidget *const calendar = field->openCalendar();
    EXPECT_EQ(calendar->selectedDate(), QDate::currentDate());
    Q_EMIT calendar->clicked(QDate(2031, 12, 5));
    QTest::keyClick(field, Qt::Key_Return);
    QTest::qWait(0);
    EXPECT_EQ(value(1).displayText(), q("2031-12-05"));
}

TEST_F(ValueEditing, EditsTextOfSeveralLinesInAWindowAndKeepsItsLineEnds)
{
    openValue(q("N'a\u20AC' + CHAR(13) + CHAR(10) + N'b' + CHAR(10) + N'c' + CHAR(13) + N'd'"));
    select(0, 1);
    press(Qt::Key_F2);
    KNValueEditor *const window = valueEditor();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->windowTitle(), q("Edit v, row 1"));
    EXPECT_EQ(window->editor()->text(), q("a\u20AC\r\nb\nc\rd"));
    window->editor()->insertAt(q("x"), 0, 0);
    window->applyButton()->click();
    EXPECT_EQ(value(1).text(), q("xa\u20AC\r\nb\nc\rd"));
    EXPECT_TRUE(grid().hasFocus());
    applyAll();
    EXPECT_EQ(stored("SELECT v FROM dbo.LongValues"), q("xa\u20AC\r\nb\nc\rd"));
}

TEST_F(ValueEditing, EditsShortTextInTheGridAndInAWindowIfAsked)
{
    openValue(q("N'short'"));
    select(0, 1);
    press(Qt::Key_F2);
    EXPECT_FALSE(valueEditor());
    ASSERT_TRUE(hasEditor());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    press(Qt::Key_F2, Qt::ShiftModifier);
    KNValueEditor *const window = valueEditor();
    ASSERT_TRUE(window);
    window->editor()->setText(q("not kept"));
    QTest::keyClick(window->editor(), Qt::Key_Escape);
    EXPECT_FALSE(valueEditor());
    EXPECT_TRUE(editing()->edits().isEmpty());
    select(0, 0);
    press(Qt::Key_F2, Qt::ShiftModifier);
    EXPECT_FALSE(valueEditor()) << "a number";
}

TEST_F(ValueEditing, ChangesNothingWithoutAnEdit)
{
    openValue(q("NULL"));
    select(0, 1);
    press(Qt::Key_F2, Qt::ShiftModifier);
    ASSERT_TRUE(valueEditor());
    valueEditor()->applyButton()->click();
    EXPECT_FALSE(valueEditor());
    EXPECT_TRUE(editing()->edits().isEmpty());
}

TEST_F(ValueEditing, EditsBytesAsHexadecimalDigits)
{
    openValue(q("NULL"), "0x00FF10");
    select(0, 2);
    press(Qt::Key_F2, Qt::ShiftModifier);
    KNValueEditor *const window = valueEditor();
    ASSERT_TRUE(window);
    EXPECT_EQ(window->editor()->text(), q("0x\n00FF10"));
    window->editor()->append(q("\n 7"));
    window->applyButton()->click();
    EXPECT_TRUE(valueEditor()) << "half a byte";
    EXPECT_TRUE(window->remark().startsWith(q("Enter 0x and pairs of hexadecimal digits")));
    window->editor()->append(q("f"));
    QTest::keyClick(window->editor(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(valueEditor());
    EXPECT_EQ(value(2).bytes(), QByteArray::fromHex("00ff107f"));
    applyAll();
    EXPECT_EQ(stored("SELECT CONVERT(varchar(20), b, 1) FROM dbo.LongValues"), q("0x00FF107F"));
}

TEST_F(ValueEditing, DoesNotEditATextThatItWouldAlter)
{
    openValue(q("N'a' + NCHAR(0) + N'b'"));
    select(0, 1);
    press(Qt::Key_F2, Qt::ShiftModifier);
    KNValueEditor *const window = valueEditor();
    ASSERT_TRUE(window);
    const bool isWhole = window->editor()->text() == value(1).text();
    EXPECT_EQ(window->applyButton()->isEnabled(), isWhole);
    EXPECT_EQ(window->editor()->isReadOnly(), !isWhole);
    EXPECT_EQ(window->remark().isEmpty(), isWhole);
    window->reject();
}

TEST_F(ValueEditing, DoesNotEditATextOfMoreThanAMillionCharacters)
{
    openValue(q("REPLICATE(CAST(N'x' AS nvarchar(max)), 1048577)"));
    select(0, 1);
    press(Qt::Key_F2);
    KNValueEditor *const window = valueEditor();
    ASSERT_TRUE(window);
    EXPECT_FALSE(window->applyButton()->isEnabled());
    EXPECT_EQ(window->remark(), q("The value is too large to be edited here."));
    window->reject();
}

TEST_F(ValueEditing, IsOfferedByTheViewerOfAnEditableValue)
{
    const auto editButton = [this](int column) -> QPushButton * {
        select(0, column);
        press(Qt::Key_Return);
        auto *const viewer = tab->window()->findChild<KNValueViewer *>();
        if (!viewer)
            return nullptr;
        for (QPushButton *const button : viewer->findChildren<QPushButton *>()) {
            if (button->text() == q("&Edit…"))
                return button;
        }
        viewer->close();
        EXPECT_TRUE(WindowTesting::settle());
        return nullptr;
    };
    openValue(q("N'{\"a\": 1}'"));
    EXPECT_FALSE(editButton(0)) << "a number is edited in the grid";
    QPushButton *const button = editButton(1);
    ASSERT_TRUE(button);
    button->click();
    ASSERT_TRUE(valueEditor());
    EXPECT_EQ(valueEditor()->editor()->text(), q("{\"a\": 1}"));
    valueEditor()->reject();
}

TEST_F(ValueEditing, SendsARowWhenItIsLeftOnlyIfThePreferencesSaySo)
{
    open();
    type(0, 1, q("kept"));
    select(1, 1);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_FALSE(previews.last);
    EXPECT_EQ(editing()->edits().changeCount(), 1);

    leaveRowsAtOnce(false);
    RecordingProgressSheets sheets;
    select(0, 1);
    type(0, 1, q("sent"));
    select(0, 2);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("one")) << "the row was not left";
    select(1, 2);
    ASSERT_TRUE(waitFor([&] { return editing()->edits().isEmpty(); }));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 1"), q("sent"));
    EXPECT_EQ(grid().currentIndex(), grid().model()->index(1, 2)) << "the cursor is lost";
}

TEST_F(ValueEditing, SendsANewRowWhenItIsLeft)
{
    leaveRowsAtOnce(false);
    RecordingProgressSheets sheets;
    open();
    type(2, 1, q("three"));
    press(Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(editing()->edits().changeCount(), 2) << "an empty row was sent";
    type(3, 0, q("4"));
    select(0, 0);
    ASSERT_TRUE(waitFor([&] { return editing()->edits().isEmpty(); }));
    EXPECT_EQ(stored("SELECT COUNT(*) FROM dbo.GridRows"), q("4"));
    EXPECT_EQ(stored("SELECT name FROM dbo.GridRows WHERE id = 3"), q("three"));
}
