#pragma once

#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryTab.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "UI/KNPreferences.h"
#include "UI/ResultEditing/KNResultEditActions.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/ResultEditing/KNRowEditBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QKeyEvent>
#include <QPushButton>

/// A query tab whose result of dbo.GridRows is edited by keys, on a real server.
class ResultEditingTest : public testing::Test
{
protected:
    ResultEditingTest()
    {
        execute("CREATE TABLE dbo.GridRows (id int NOT NULL PRIMARY KEY, name nvarchar(40) NULL, amount "
                "decimal(9,2) NULL, done bit NOT NULL DEFAULT 0, twice AS id * 2)");
        execute("INSERT INTO dbo.GridRows (id, name, amount) VALUES (1, N'one', 1.5), (2, N'two', NULL), (3, "
                "NULL, 3)");
        tab->resize(900, 600);
        tab->show();
        tab->activateWindow();
        EXPECT_TRUE(WindowTesting::waitFor([this] { return tab->isActiveWindow(); }));
    }
    ~ResultEditingTest() override
    {
        tab.reset();
        EXPECT_TRUE(WindowTesting::settle());
        KNPreferences::defaults().save();
        execute("DROP TABLE dbo.GridRows");
    }

    /// Runs a query in the tab.
    void run(const char *text)
    {
        tab->setText(q(text));
        tab->run();
        ASSERT_TRUE(
            WindowTesting::waitFor([&] { return !tab->isRunning() && tab->messages()->isComplete(); }));
    }
    /// Runs a query whose result can be edited.
    void open(const char *text = "SELECT * FROM dbo.GridRows ORDER BY id")
    {
        run(text);
        ASSERT_TRUE(editing());
        ASSERT_TRUE(WindowTesting::waitFor([&] { return editing()->isEditable(); }))
            << editing()->readOnlyReason().toStdString();
        grid().setFocus();
        select(0, 1);
    }
    KNResultEditing *editing() const { return tab->resultsPane()->editing(); }
    KNResultSection &section() const { return *tab->resultsPane()->section(0); }
    KNResultGridView &grid() const { return *section().grid(); }
    KNRowEditBar &bar() const { return *section().editActions()->bar(); }
    QString shown(int row, int column) const { return grid().model()->index(row, column).data().toString(); }
    void select(int row, int column)
    {
        grid().selectionModel()->setCurrentIndex(grid().model()->index(row, column),
                                                 QItemSelectionModel::ClearAndSelect);
    }
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(&grid(), static_cast<Qt::Key>(key), modifiers);
    }
    /// Types into a cell from F2 to Return.
    void type(int row, int column, const QString &text)
    {
        select(row, column);
        press(Qt::Key_F2);
        QWidget *const editor = QApplication::focusWidget();
        ASSERT_NE(editor, &grid()) << "no editor was opened";
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        for (const QChar each : text) { // QTest::keyClicks() takes ASCII only
            QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, QString(each));
            QApplication::sendEvent(editor, &key);
        }
        QTest::keyClick(editor, Qt::Key_Return);
        QTest::qWait(0); // the editor is closed
        ASSERT_TRUE(grid().hasFocus());
    }
    bool hasEditor() const { return QApplication::focusWidget() != &grid(); }
    /// Asks to apply and returns the preview.
    RecordingQueryPreview *preview()
    {
        press(Qt::Key_Return, Qt::ControlModifier);
        EXPECT_TRUE(previews.last);
        return previews.last;
    }
    /// Applies all changes, and waits for the end; the preview stays if they fail.
    void apply()
    {
        RecordingQueryPreview *const sheet = preview();
        ASSERT_TRUE(sheet);
        sheet->accept(sheet->statements);
        ASSERT_TRUE(WindowTesting::waitFor(
            [&] { return previews.last ? !previews.last->isRunning() : editing()->isEditable(); }));
    }
    void applyAll()
    {
        apply();
        if (previews.last && !previews.last->outcomes.empty())
            ADD_FAILURE() << previews.last->outcomes.back().error.localizedDescription().toStdString();
        EXPECT_TRUE(WindowTesting::settle()); // the session is released
        EXPECT_TRUE(editing()->edits().isEmpty());
    }
    /// Applies changes that fail, closes the preview and returns the message.
    QString failure()
    {
        apply();
        if (!previews.last || previews.last->outcomes.empty()) {
            ADD_FAILURE() << "the changes were applied";
            return {};
        }
        const KNStatementOutcome outcome = previews.last->outcomes.back();
        EXPECT_EQ(outcome.changes, KNStatementOutcome::Changes::None);
        previews.last->cancel();
        EXPECT_TRUE(WindowTesting::settle());
        EXPECT_TRUE(editing()->isEditable());
        EXPECT_FALSE(editing()->edits().isEmpty()) << "the changes are not pending any more";
        return outcome.error.localizedDescription();
    }

    /// Runs a statement on another connection.
    void execute(const char *sql)
    {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) { client.executeNonQuery(q(sql), failure); },
            *details, &error);
        EXPECT_FALSE(error) << sql << ": " << error.localizedDescription().toStdString();
    }
    /// The first value of a query on another connection.
    QString stored(const char *sql)
    {
        KNError error;
        QString text;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(q(sql), failure);
                if (rows && rows->next())
                    text = rows->objectForColumnIndex(0).isNull()
                               ? q("NULL")
                               : rows->objectForColumnIndex(0).displayText();
            },
            *details, &error);
        EXPECT_FALSE(error) << sql << ": " << error.localizedDescription().toStdString();
        return text;
    }

    RecordingAlerts &alerts = RecordingAlerts::install();
    RecordingQueryPreview::Installation previews;
    const VantorDBCPtr details =
        DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"));
    std::unique_ptr<QueryTab> tab = std::make_unique<QueryTab>(*details);
};
