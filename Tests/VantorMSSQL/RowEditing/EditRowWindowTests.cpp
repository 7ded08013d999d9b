#include "Database/VantorDatabaseConnectionPool.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "RowEditing/MSSQLEditRowHelper.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/SampleServerFixture.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "UI/RowEditing/KNEditRowModel.h"
#include "UI/RowEditing/KNEditRowWindowController.h"

#include <gtest/gtest.h>

#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QTableView>
#include <QTest>

namespace EditRowWindowTests {

using WindowTesting::waitFor;

namespace {

/// The form over dbo.FormRow of a real server.
class EditRowWindow : public testing::Test
{
protected:
    EditRowWindow()
    {
        m_settings->setHost(QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()));
        m_settings->setUsername(QString::fromLatin1(SampleServerFixture::User));
        m_settings->setPassword(QString::fromLatin1(SampleServerFixture::Password));
        m_settings->setDatabase(q("library"));
        run("CREATE TABLE dbo.FormRow (id int NOT NULL PRIMARY KEY, name nvarchar(40) NULL, "
            "done bit NOT NULL DEFAULT 0, due date NULL)");
        m_window.show();
    }
    ~EditRowWindow() override
    {
        delete m_form;
        run("DROP TABLE dbo.FormRow");
        EXPECT_TRUE(WindowTesting::settle());
    }

    void open(std::optional<KNEditRowHelper::Values> initial = {})
    {
        const auto row =
            std::make_shared<MSSQLEditRowHelper>(m_settings, q("dbo"), q("FormRow"), std::move(initial));
        m_form = new KNEditRowWindowController(row, false, &m_window);
        m_form->beginSheet([this](int code) { m_code = code; });
        ASSERT_TRUE(waitFor([&] { return m_form->model()->rowCount() == 4; }));
        m_form->activateWindow();
        ASSERT_TRUE(waitFor([&] { return m_form->isActiveWindow(); }));
        m_form->table()->setFocus();
    }
    QModelIndex value(int line) const { return m_form->model()->index(line, KNEditRowModel::Value); }
    /// Types into a line and ends the editor with Return.
    void type(int line, const char *text)
    {
        m_form->table()->setCurrentIndex(value(line));
        QTest::keyClick(m_form->table(), Qt::Key_F2);
        QWidget *const editor = m_form->table()->indexWidget(value(line));
        QWidget *const typed = editor ? editor : QApplication::focusWidget();
        QTest::keyClicks(typed, q(text));
        QTest::keyClick(typed, Qt::Key_Return);
        QApplication::processEvents();
    }
    void apply()
    {
        QTest::keyClick(m_form, Qt::Key_Return, Qt::ControlModifier);
        ASSERT_TRUE(waitFor([&] { return !m_form->model()->isLocked(); }));
    }
    void run(const char *sql)
    {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) { client.executeNonQuery(q(sql), failure); },
            *m_settings, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    }
    QString stored(const char *sql)
    {
        KNError error;
        QString text;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(q(sql), failure);
                if (rows && rows->next())
                    text = rows->stringForColumnIndex(0);
            },
            *m_settings, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return text;
    }

    RecordingAlerts &m_alerts = RecordingAlerts::install();
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings =
        std::make_shared<MSSQLDatabaseConnectionDetails>();
    QWidget m_window;
    QPointer<KNEditRowWindowController> m_form;
    int m_code = -1;
};

} // namespace

TEST_F(EditRowWindow, AddsARowByKeyboardAndShowsWhatTheServerStored)
{
    open();
    EXPECT_EQ(value(2).data().toString(), q("default ((0))"));
    EXPECT_EQ(value(0).data().toString(), q("required"));
    type(0, "7");
    type(1, "Ann");
    apply();
    EXPECT_TRUE(m_alerts.errors.empty());
    EXPECT_EQ(value(2).data().toString(), q("0"));
    EXPECT_EQ(value(3).data().toString(), q("NULL"));
    EXPECT_EQ(stored("SELECT name FROM dbo.FormRow WHERE id = 7"), q("Ann"));
    EXPECT_EQ(m_form->status(), q("The row was added. These are the values of the server."));

    type(1, "Bea");
    apply();
    EXPECT_EQ(stored("SELECT name FROM dbo.FormRow WHERE id = 7"), q("Bea"));
    QTest::keyClick(m_form, Qt::Key_Escape);
    EXPECT_EQ(m_code, 1);
}

TEST_F(EditRowWindow, KeepsEveryValueAfterAnError)
{
    run("INSERT INTO dbo.FormRow (id) VALUES (7)");
    open();
    type(0, "7");
    type(1, "twice");
    apply();
    ASSERT_EQ(m_alerts.errors.size(), 1U);
    EXPECT_EQ(value(0).data().toString(), q("7"));
    EXPECT_EQ(value(1).data().toString(), q("twice"));
    EXPECT_EQ(stored("SELECT CAST(COUNT(*) AS nvarchar(9)) FROM dbo.FormRow"), q("1"));
}

TEST_F(EditRowWindow, RefusesTextThatIsNoValueAndRunsNothing)
{
    open();
    type(0, "seven");
    EXPECT_EQ(m_form->status(), q("id: Enter a whole number, such as 42."));
    EXPECT_EQ(value(0).data().toString(), q("required"));
    type(3, "2023-02-29");
    EXPECT_EQ(m_form->status(), q("due: Enter a date such as 2024-02-29."));

    type(1, "x");
    m_form->table()->setCurrentIndex(value(0));
    QTest::keyClick(m_form->table(), Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), q("eight"));
    m_form->apply();
    EXPECT_FALSE(m_form->model()->isLocked());
    EXPECT_EQ(m_form->status(), q("id: Enter a whole number, such as 42."));
    EXPECT_EQ(stored("SELECT CAST(COUNT(*) AS nvarchar(9)) FROM dbo.FormRow"), q("0"));
}

TEST_F(EditRowWindow, SetsNullByKeyWhereTheColumnTakesIt)
{
    run("INSERT INTO dbo.FormRow (id, name) VALUES (7, 'old')");
    open(KNEditRowHelper::Values{
        {q("id"), KNValue(7)}, {q("name"), KNValue(q("old"))}, {q("done"), KNValue(false)}});
    m_form->table()->setCurrentIndex(value(2));
    QTest::keyClick(m_form, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(m_form->status(), q("done does not take NULL."));
    m_form->table()->setCurrentIndex(value(1));
    QTest::keyClick(m_form, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(value(1).data().toString(), q("NULL"));
    apply();
    EXPECT_EQ(stored("SELECT CASE WHEN name IS NULL THEN 'null' ELSE name END FROM dbo.FormRow"), q("null"));
}

TEST_F(EditRowWindow, SaysWhenTheRowIsGone)
{
    open(KNEditRowHelper::Values{{q("id"), KNValue(9)}});
    type(1, "x");
    apply();
    EXPECT_TRUE(m_form->status().startsWith(q("The statement ran, but no row has this key now")))
        << m_form->status().toStdString();
    EXPECT_EQ(value(1).data().toString(), q("x"));
}

TEST_F(EditRowWindow, AsksBeforeItDiscardsChanges)
{
    open();
    type(1, "x");
    m_alerts.answer = 0;
    QTest::keyClick(m_form, Qt::Key_Escape);
    EXPECT_FALSE(m_form->closed());
    m_alerts.answer = 1;
    QTest::keyClick(m_form, Qt::Key_Escape);
    EXPECT_TRUE(m_form->closed());
    EXPECT_EQ(m_code, 0);
    EXPECT_EQ(stored("SELECT CAST(COUNT(*) AS nvarchar(9)) FROM dbo.FormRow"), q("0"));
}

} // namespace EditRowWindowTests
