#include "Desktop/Main/StatusLine.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryTab.h"
#include "Desktop/Query/TransactionBar.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>

namespace {

using WindowTesting::waitFor;

/// A tab with a temporary table, in which transactions are opened and ended.
class Transactions : public testing::Test
{
protected:
    Transactions()
    {
        tab.resize(800, 600);
        tab.show();
        run("CREATE TABLE #t (i int)");
    }
    void run(const char *text)
    {
        tab.setText(QString::fromUtf8(text));
        tab.run();
        ASSERT_TRUE(waitFor([&] { return !tab.isRunning() && tab.messages()->isComplete(); }));
    }
    void click(const char *title)
    {
        for (QPushButton *const button : bar().findChildren<QPushButton *>()) {
            if (button->text().remove(QLatin1Char('&')) == QLatin1String(title))
                button->click();
        }
        ASSERT_TRUE(waitFor([&] { return tab.canPerform(KNDocumentAction::Reconnect); }));
    }
    TransactionBar &bar() { return *tab.findChild<TransactionBar *>(); }
    qint64 rowsOfTable()
    {
        run("SELECT * FROM #t");
        return *tab.status().rowCount;
    }

    RecordingAlerts &alerts = RecordingAlerts::install();
    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
};

} // namespace

TEST_F(Transactions, AreCommittedByAButtonThatIsThereWhileTheyAreOpen)
{
    EXPECT_FALSE(bar().isVisible());
    EXPECT_FALSE(tab.canPerform(KNDocumentAction::Commit));
    run("BEGIN TRAN INSERT #t VALUES (1)");
    EXPECT_TRUE(bar().isVisible());
    EXPECT_TRUE(tab.canPerform(KNDocumentAction::Rollback));
    click("Commit");
    EXPECT_FALSE(bar().isVisible());
    EXPECT_FALSE(tab.status().hasOpenTransaction);
    EXPECT_TRUE(waitFor([&] {
        return tab.messages()->toPlainText().endsWith(QStringLiteral("The transaction was committed."));
    }));
    EXPECT_TRUE(tab.editor()->hasFocus());
    EXPECT_EQ(rowsOfTable(), 1);
}

TEST_F(Transactions, AreRolledBack)
{
    run("BEGIN TRAN INSERT #t VALUES (1)");
    click("Roll Back");
    EXPECT_FALSE(tab.status().hasOpenTransaction);
    EXPECT_EQ(rowsOfTable(), 0);
    EXPECT_TRUE(alerts.errors.empty());
}

TEST_F(Transactions, AreNoticedWhenALaterRunBeginsThemImplicitly)
{
    run("SET IMPLICIT_TRANSACTIONS ON");
    EXPECT_FALSE(tab.status().hasOpenTransaction);
    run("INSERT #t VALUES (1)");
    EXPECT_TRUE(tab.status().hasOpenTransaction);
    EXPECT_TRUE(bar().isVisible());
    click("Roll Back");
    EXPECT_FALSE(tab.status().hasOpenTransaction);
    EXPECT_EQ(rowsOfTable(), 0);
}

TEST_F(Transactions, StayOpenWhenAnInnerOneIsCommitted)
{
    run("BEGIN TRAN BEGIN TRAN INSERT #t VALUES (1)");
    click("Commit");
    EXPECT_TRUE(bar().isVisible());
    EXPECT_TRUE(waitFor([&] {
        return tab.messages()->toPlainText().endsWith(QStringLiteral("A transaction is still open."));
    }));
    click("Roll Back");
    EXPECT_FALSE(bar().isVisible());
}

TEST(StatusLineOfADocument, ShowsCursorAndFile)
{
    QueryTab tab{*DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop"))};
    tab.setText(QString::fromUtf8("select 1\n'\xF0\x9F\x98\x80' x"));
    tab.editor()->selectRange({13, 0}); // behind the emoji, which has two units, and the quote
    EXPECT_EQ(tab.status().line, 2);
    EXPECT_EQ(tab.status().column, 5);
    EXPECT_EQ(tab.status().encoding, QStringLiteral("UTF-8"));
    EXPECT_EQ(tab.status().lineEnds, QStringLiteral("LF"));

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    const QByteArray content("\xff\xfe"
                             "a\0\r\0\n\0b\0",
                             10);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    KNError error;
    ASSERT_TRUE(tab.openFile(path, &error));
    EXPECT_EQ(tab.status().encoding, QStringLiteral("UTF-16 LE"));
    EXPECT_EQ(tab.status().lineEnds, QStringLiteral("CRLF"));
    tab.insertText(QStringLiteral("x"));
    tab.perform(KNDocumentAction::Save);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("\xff\xfe"
                                         "x\0a\0\r\0\n\0b\0",
                                         12));

    StatusLine line;
    const auto shown = [&](const char *name) {
        for (const QLabel *const label : line.findChildren<QLabel *>()) {
            if (label->accessibleName() == QLatin1String(name))
                return label->text();
        }
        return QString();
    };
    KNDocumentStatus status;
    status.line = 1234;
    status.column = 5;
    status.encoding = QStringLiteral("UTF-8 with BOM");
    status.lineEnds = QStringLiteral("CRLF");
    status.rowCount = 1;
    const QColor plain = line.palette().color(QPalette::Window);
    line.showStatus(status);
    EXPECT_EQ(shown("Position"), QStringLiteral("Line 1,234, Column 5"));
    EXPECT_EQ(shown("Encoding"), QStringLiteral("UTF-8 with BOM"));
    EXPECT_EQ(shown("Line ends"), QStringLiteral("CRLF"));
    EXPECT_EQ(shown("Rows"), QStringLiteral("1 row"));
    EXPECT_EQ(line.palette().color(QPalette::Window), plain);
    status.hasOpenTransaction = true;
    line.showStatus(status);
    EXPECT_NE(line.palette().color(QPalette::Window), plain);
    line.clearStatus();
    EXPECT_EQ(shown("Position"), QString());
    EXPECT_EQ(line.palette().color(QPalette::Window), plain);
}

TEST_F(Transactions, OfManyRowsAreCountedAsPeopleRead)
{
    run("INSERT #t SELECT 1 FROM generate_rows(1234)\nINSERT #t VALUES (1)\nSELECT 1 AS a\nSELECT * FROM #t");
    EXPECT_EQ(tab.messages()->toPlainText(),
              QStringLiteral("Command completed successfully. (1,234 rows affected).\n"
                             "Command completed successfully. (1 row affected).\n"
                             "Command completed successfully. (1 result).\n"
                             "Command completed successfully. (1,235 results)."));
}
