#include "Support/WatchedApplication.h"
#include "UI/TableDesigner/MSSQLColumnFilter.h"
#include "UI/TableDesigner/MSSQLEditForeignKeyWindowController.h"
#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"
#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableListForeignKeysViewController.h"
#include "UI/TableDesigner/MSSQLTableTriggerDesignerViewController.h"
#include "VantorMSSQL/Dialogs/DesignerTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QTableWidget>

#include <tuple>

using WindowTesting::waitFor;

namespace {

const QString Longest = QString(128, QChar(u'x'));

QStringList troublesomeNames()
{
    QStringList names{Longest};
    for (const char *name : {"a]b", "[a]", "it's", "say \"hi\"", "a.b.c", " two  words ", "🎁 Größe",
                             "new\nline", "-- x", "%@{TABLE_NAME}"})
        names.append(QString::fromUtf8(name));
    return names;
}

QString bracketed(QString name)
{
    return QLatin1Char('[') + name.replace(QLatin1Char(']'), QLatin1String("]]")) + QLatin1Char(']');
}

QString literal(QString text)
{
    return QLatin1String("N'") + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
}

/// A table of which everything has the same name.
class TroublesomeName : public DesignerTest, public testing::WithParamInterface<int>
{
protected:
    TroublesomeName()
        : m_name(troublesomeNames()[GetParam()])
        , m_other(m_name.left(126) + QStringLiteral("'2"))
        , m_table(QLatin1String("dbo.") + bracketed(m_name))
    {
        run(KNFormat("CREATE TABLE %@ (id int NOT NULL, %@ int NOT NULL)", m_table, bracketed(m_name)));
        run("CREATE TABLE dbo.Target (id int NOT NULL PRIMARY KEY)");
        open(QStringLiteral("dbo"), m_name);
    }
    ~TroublesomeName() override
    {
        EXPECT_TRUE(m_alerts.messages.empty()) << m_alerts.messages[0].join(u'\n').toStdString();
        EXPECT_TRUE(m_alerts.errors.empty()) << m_alerts.errors[0].localizedDescription().toStdString();
    }

    QStringList columnNames()
    {
        return column(
            KNFormat("SELECT name FROM sys.columns WHERE object_id = OBJECT_ID(%@) ORDER BY column_id",
                     literal(m_table)));
    }
    QStringList names(const char *view)
    {
        return column(KNFormat("SELECT name FROM %s ORDER BY name", view));
    }

    const QString m_name;
    const QString m_other;
    const QString m_table;
};

/// Things that go wrong while a table is designed.
class DesignInTrouble : public DesignerTest
{
protected:
    explicit DesignInTrouble(SampleServerFixture &server = SampleServerFixture::shared())
        : DesignerTest(server)
    {
        run("CREATE TABLE dbo.T (id int NOT NULL, name nvarchar(20) NULL, amount int NULL)");
        open(QStringLiteral("dbo"), QStringLiteral("T"));
    }

    /// Drops a column, and returns the message that the user gets.
    QString drop(int row)
    {
        grid()->setCurrentIndex(grid()->model()->index(row, Column::Field));
        columns()->handleDeleteColumn();
        answer(1);
        EXPECT_EQ(m_alerts.messages.size(), 1u);
        return m_alerts.messages.empty() ? QString() : m_alerts.messages[0][1];
    }
};

struct OwnServer
{
    SampleServerFixture server;
};

class DesignWithoutServer : private OwnServer, public DesignInTrouble
{
protected:
    DesignWithoutServer()
        : DesignInTrouble(server)
    {
    }
    void stopServer()
    {
        server.kill();
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Names, TroublesomeName, testing::Range(0, 11));

TEST_P(TroublesomeName, IsTheOneThatColumnEditsMean)
{
    ASSERT_EQ(cells(Column::Field), (QStringList{QStringLiteral("id"), m_name}));
    edit(1, Column::Type, QStringLiteral("bigint"));
    EXPECT_EQ(cells(Column::Type), (QStringList{QStringLiteral("int"), QStringLiteral("bigint")}));
    edit(1, Column::Default, QStringLiteral("7"));
    EXPECT_EQ(names("sys.default_constraints").size(), 1);
    edit(1, Column::Default, QString::fromLatin1(""));
    EXPECT_EQ(names("sys.default_constraints").size(), 0);
    edit(1, Column::Primary, true);
    EXPECT_EQ(
        column(QStringLiteral("SELECT name FROM sys.key_constraints WHERE type = 'PK' AND parent_object_id = "
                              "OBJECT_ID(%1)")
                   .arg(literal(m_table)))
            .size(),
        1);
    edit(1, Column::Primary, false);
    edit(1, Column::Nullable, true);
    edit(1, Column::Field, m_other);
    EXPECT_EQ(columnNames(), (QStringList{QStringLiteral("id"), m_other.trimmed()}));
    edit(1, Column::Field, m_name);
    EXPECT_EQ(columnNames(), (QStringList{QStringLiteral("id"), m_name.trimmed()}));
    columns()->addNewColumn();
    finish();
    EXPECT_EQ(columnNames().size(), 3);
    grid()->setCurrentIndex(grid()->model()->index(1, Column::Field));
    columns()->handleDeleteColumn();
    answer(1);
    EXPECT_EQ(columnNames(), (QStringList{QStringLiteral("id"), QStringLiteral("NewColumn1")}));
}

TEST_P(TroublesomeName, IsTheOneThatIndexStatementsMean)
{
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>();
    indexes->addNewIndex();
    QPointer editor = m_designer->findChild<MSSQLEditIndexWindowController *>();
    auto *const available = editor->findChildren<QListWidget *>().first();
    ASSERT_TRUE(waitFor([&] { return available->count() == 2; }));
    editor->findChild<QLineEdit *>()->setText(m_name);
    editor->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(editor));
    available->setFocus();
    available->setCurrentRow(1);
    QTest::keyClick(available, Qt::Key_Return);
    clickDefault(editor);
    acceptPreview();
    EXPECT_EQ(rows(indexes->list()), QStringList{KNFormat("%@ | %@ | Non-Clustered | no", m_name, m_name)});

    ASSERT_TRUE(select(indexes->list(), m_name));
    indexes->indexTableViewDoubleClicked();
    editor = m_designer->findChildren<MSSQLEditIndexWindowController *>().last();
    editor->findChild<QLineEdit *>()->setText(m_other);
    clickDefault(editor);
    acceptPreview();
    EXPECT_EQ(rows(indexes->list()), QStringList{KNFormat("%@ | %@ | Non-Clustered | no", m_other, m_name)});

    ASSERT_TRUE(select(indexes->list(), m_other));
    indexes->handleDeleteIndex();
    acceptPreview();
    EXPECT_EQ(indexes->list()->topLevelItemCount(), 0);
}

TEST_P(TroublesomeName, IsTheOneThatForeignKeysAndTriggersMean)
{
    const QString trigger = m_other;
    run(KNFormat("CREATE TRIGGER dbo.%@ ON %@ AFTER INSERT AS PRINT 'x'", bracketed(trigger), m_table));
    auto *const keys = page<MSSQLTableListForeignKeysViewController>();
    keys->addNewKey();
    auto *const editor = m_designer->findChild<MSSQLEditForeignKeyWindowController *>();
    ASSERT_TRUE(waitFor([&] { return editor->isLoaded(); }));
    const QString keyName = m_name.left(125).trimmed() + QStringLiteral("FK");
    editor->findChild<QLineEdit *>()->setText(keyName);
    auto *const tables = editor->findChild<QComboBox *>();
    tables->setCurrentIndex(tables->findText(QStringLiteral("dbo.Target")));
    auto *const pairs = editor->findChild<QTableWidget *>();
    ASSERT_TRUE(waitFor([&] { return pairs->rowCount() == 1; }));
    auto *const local = qobject_cast<QComboBox *>(pairs->cellWidget(0, 0));
    local->setCurrentIndex(local->findText(m_name));
    clickDefault(editor);
    acceptPreview();
    EXPECT_EQ(names("sys.foreign_keys"), QStringList{keyName});
    ASSERT_TRUE(select(keys->list(), keyName));
    keys->dropSelected();
    answer(1);
    EXPECT_TRUE(names("sys.foreign_keys").isEmpty());

    auto *const triggers = page<MSSQLTableTriggerDesignerViewController>();
    ASSERT_EQ(triggers->list()->topLevelItemCount(), 1);
    triggers->list()->setCurrentItem(triggers->list()->topLevelItem(0));
    triggers->toggleSelected();
    finish();
    EXPECT_EQ(column(QStringLiteral("SELECT name FROM sys.triggers WHERE is_disabled = 1")).size(), 1);
    triggers->list()->setCurrentItem(triggers->list()->topLevelItem(0));
    triggers->dropSelected();
    answer(1);
    EXPECT_TRUE(names("sys.triggers").isEmpty());
}

TEST_F(DesignInTrouble, ShowsANewColumnThatTheFilterWouldHide)
{
    m_designer->findChild<MSSQLColumnFilter *>()->setText(QStringLiteral("amount"));
    EXPECT_TRUE(grid()->isRowHidden(0));
    columns()->addNewColumn();
    finish();
    EXPECT_EQ(cells(Column::Field).last(), QStringLiteral("NewColumn1"));
    EXPECT_FALSE(grid()->isRowHidden(3));
    EXPECT_FALSE(grid()->isRowHidden(0));
}

TEST_F(DesignInTrouble, ShowsThatTheTableIsGone)
{
    run("DROP TABLE dbo.T");
    edit(2, Column::Type, QStringLiteral("bigint"));
    ASSERT_EQ(m_alerts.messages.size(), 1u);
    EXPECT_TRUE(m_alerts.messages[0][1].startsWith(QStringLiteral("Error: ")));
    EXPECT_TRUE(
        m_alerts.messages[0][1].contains(QStringLiteral("ALTER TABLE dbo.T ALTER COLUMN amount bigint")));
    EXPECT_EQ(grid()->model()->rowCount(), 0);
    EXPECT_EQ(notice(columns()),
              QStringLiteral("The table was not found, or you have no right to see its columns."));
    EXPECT_EQ(notice(page<MSSQLTableIndexDesignerViewController>()),
              QStringLiteral("The table dbo.T was not found, or you have no right to see it."));
}

TEST_F(DesignInTrouble, ShowsWhatSomebodyElseHasChanged)
{
    run("EXEC sp_rename 'dbo.T.amount', 'total', 'COLUMN'");
    edit(2, Column::Type, QStringLiteral("bigint"));
    ASSERT_EQ(m_alerts.messages.size(), 1u);
    EXPECT_TRUE(
        m_alerts.messages[0][1].contains(QStringLiteral("ALTER TABLE dbo.T ALTER COLUMN amount bigint")));
    EXPECT_EQ(cells(Column::Field).last(), QStringLiteral("total"));
    edit(2, Column::Type, QStringLiteral("bigint"));
    EXPECT_EQ(m_alerts.messages.size(), 1u);
    EXPECT_EQ(cells(Column::Type).last(), QStringLiteral("bigint"));
}

TEST_F(DesignInTrouble, KeepsAColumnThatAnIndexUses)
{
    run("CREATE INDEX IX ON dbo.T (amount)");
    EXPECT_TRUE(drop(2).contains(QStringLiteral("\r\nQuery was: ")));
    EXPECT_EQ(cells(Column::Field).size(), 3);
}

TEST_F(DesignInTrouble, KeepsAColumnThatAConstraintUses)
{
    run("ALTER TABLE dbo.T ADD CONSTRAINT CK CHECK (amount > 0)");
    EXPECT_TRUE(drop(2).contains(QStringLiteral("ALTER TABLE dbo.T DROP COLUMN amount")));
    EXPECT_EQ(cells(Column::Field).size(), 3);
}

TEST_F(DesignInTrouble, KeepsAColumnThatAComputedColumnUses)
{
    run("ALTER TABLE dbo.T ADD doubled AS amount * 2");
    columns()->reload();
    finish();
    EXPECT_TRUE(drop(2).contains(QStringLiteral("ALTER TABLE dbo.T DROP COLUMN amount")));
    EXPECT_EQ(cells(Column::Field).size(), 4);
}

TEST_F(DesignInTrouble, LetsTheUserSelectTheFailedStatement)
{
    run("DROP TABLE dbo.T");
    KNAlerts::setShared(nullptr); // the real message boxes
    edit(2, Column::Type, QStringLiteral("bigint"));
    const QDialog *const sheet = m_designer->findChild<QDialog *>();
    ASSERT_NE(sheet, nullptr);
    EXPECT_LE(sheet->height(), 600) << "higher than a small screen";
    const auto *const text = sheet->findChild<QPlainTextEdit *>();
    ASSERT_NE(text, nullptr);
    EXPECT_TRUE(text->toPlainText().startsWith(QStringLiteral("Error: ")));
    EXPECT_TRUE(text->toPlainText().contains(QStringLiteral("ALTER TABLE dbo.T ALTER COLUMN amount bigint")));
    EXPECT_TRUE(text->textInteractionFlags() & Qt::TextSelectableByMouse);
    RecordingAlerts::install();
}

TEST_F(DesignInTrouble, AsksAboutALongStatementInASheetThatFitsTheScreen)
{
    KNAlerts::setShared(nullptr); // the real message boxes
    for (const auto &[title, expected, line] :
         std::initializer_list<std::tuple<const char *, int, const char *>>{
             {"First", 0, "line\n"}, {"Second", 1, "long line "}, {nullptr, -1, "line\n"}}) {
        int answered = -2;
        KNAlerts::shared().ask(m_designer.get(),
                               {QStringLiteral("Run?"),
                                QString::fromLatin1(line).repeated(200),
                                {QStringLiteral("First"), QStringLiteral("Second")}},
                               [&answered](int button) { answered = button; });
        auto *const sheet = m_designer->findChildren<QDialog *>().last();
        ASSERT_TRUE(waitFor([&] { return sheet->isVisible(); }));
        EXPECT_LE(sheet->height(), 600);
        for (QPushButton *const button : sheet->findChildren<QPushButton *>()) {
            EXPECT_EQ(button->isDefault(), button->text() == QStringLiteral("First"));
            if (title && button->text() == QString::fromLatin1(title))
                button->click();
        }
        if (!title)
            QTest::keyClick(sheet, Qt::Key_Escape);
        EXPECT_TRUE(waitFor([&] { return answered != -2; }));
        EXPECT_EQ(answered, expected);
        QTest::qWait(0);
    }
    RecordingAlerts::install();
}

TEST_F(DesignInTrouble, KeepsTheIndexWhenTheNewOneIsRefused)
{
    run("CREATE INDEX IX ON dbo.T (amount)");
    run("INSERT INTO dbo.T (id, amount) VALUES (1, 5), (2, 5)");
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>();
    indexes->loadIndexes();
    finish();
    ASSERT_TRUE(select(indexes->list(), QStringLiteral("IX")));
    indexes->indexTableViewDoubleClicked();
    auto *const editor = m_designer->findChild<MSSQLEditIndexWindowController *>();
    editor->findChild<QCheckBox *>()->setChecked(true); // unique, but the values are not
    clickDefault(editor);
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->statements.isEmpty(); }));
    m_previews.last->accept(m_previews.last->statements);
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->outcomes.empty(); }));
    EXPECT_EQ(m_previews.last->outcomes[0].changes, KNStatementOutcome::Changes::None);
    EXPECT_TRUE(m_previews.last->outcomes[0].failedStatement.contains(QStringLiteral("CREATE UNIQUE")));
    m_previews.last->cancel();
    EXPECT_EQ(column(QStringLiteral("SELECT is_unique FROM sys.indexes WHERE name = 'IX'")),
              QStringList{QStringLiteral("0")});
    EXPECT_EQ(rows(indexes->list()), QStringList{QStringLiteral("IX | amount | Non-Clustered | no")});
}

TEST_F(DesignInTrouble, ShowsWhatAFailedPreviewHasLeft)
{
    run("CREATE INDEX IX ON dbo.T (amount)");
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>();
    indexes->loadIndexes();
    finish();
    ASSERT_TRUE(select(indexes->list(), QStringLiteral("IX")));
    indexes->handleDeleteIndex();
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->statements.isEmpty(); }));
    m_previews.last->accept(
        QStringLiteral("DROP INDEX IX ON dbo.T;\r\nCOMMIT;\r\nGO\r\nRAISERROR(N'failed', 16, 1)"));
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->outcomes.empty(); }));
    EXPECT_NE(m_previews.last->outcomes[0].changes, KNStatementOutcome::Changes::None);
    m_previews.last->cancel();
    finish();
    EXPECT_EQ(indexes->list()->topLevelItemCount(), 0);
    EXPECT_TRUE(m_designer->session().executedScripts().isEmpty());
}

TEST_F(DesignInTrouble, CancelsALongChangeWhileTheWindowStaysFree)
{
    WatchedApplication::instance().beginWatch();
    m_designer->session().run({[](const MSSQLDesignedTable &) {
                                   const QString statement = QStringLiteral(
                                       "ALTER TABLE dbo.T ADD extra int; WAITFOR DELAY '00:05:00'");
                                   return KNStatementPair{statement, statement, {}};
                               },
                               QStringLiteral("Waiting"),
                               QStringLiteral("test"),
                               {},
                               true});
    ASSERT_TRUE(waitFor([&] { return m_designer->status().text == QStringLiteral("Waiting"); }));
    QTest::qWait(500);
    EXPECT_TRUE(m_designer->canPerform(KNDocumentAction::Cancel));
    for (const QPushButton *button : columns()->findChildren<QPushButton *>())
        EXPECT_FALSE(button->isEnabled());
    m_designer->perform(KNDocumentAction::Cancel);
    finish();
    EXPECT_TRUE(m_alerts.messages.empty());
    EXPECT_EQ(cells(Column::Field).size(), 3) << "what was done is rolled back";
    EXPECT_LT(WatchedApplication::instance().longestCall().milliseconds, WatchedApplication::LongestAllowed)
        << WatchedApplication::instance().longestCall().what;
}

TEST_F(DesignWithoutServer, ShowsTheErrorWhenTheConnectionIsLostBeforeAChange)
{
    stopServer();
    edit(2, Column::Type, QStringLiteral("bigint"));
    ASSERT_EQ(m_alerts.messages.size(), 1u);
    EXPECT_TRUE(
        m_alerts.messages[0][1].contains(QStringLiteral("ALTER TABLE dbo.T ALTER COLUMN amount bigint")));
    EXPECT_EQ(grid()->model()->rowCount(), 0);
    EXPECT_FALSE(notice(columns()).isEmpty());
    EXPECT_NE(notice(columns()),
              QStringLiteral("The table was not found, or you have no right to see its columns."));
}

TEST_F(DesignWithoutServer, ShowsTheErrorWhenTheConnectionIsLostBetweenTwoStatements)
{
    run("CREATE INDEX IX ON dbo.T (amount)");
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>();
    indexes->loadIndexes();
    finish();
    ASSERT_TRUE(select(indexes->list(), QStringLiteral("IX")));
    indexes->indexTableViewDoubleClicked();
    auto *const editor = m_designer->findChild<MSSQLEditIndexWindowController *>();
    editor->findChild<QCheckBox *>()->setChecked(true);
    clickDefault(editor);
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->statements.isEmpty(); }));
    QString statements = m_previews.last->statements;
    statements.replace(QStringLiteral(";\r\n"),
                       QStringLiteral(";\r\nGO\r\nWAITFOR DELAY '00:05:00';\r\nGO\r\n"));
    m_previews.last->accept(statements);
    QTest::qWait(3000); // DROP INDEX has run, CREATE INDEX has not
    EXPECT_TRUE(m_previews.last->isRunning());
    stopServer();
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->outcomes.empty(); }));
    EXPECT_TRUE(m_previews.last->outcomes[0].error.isSet());
    EXPECT_TRUE(m_previews.last->outcomes[0].failedStatement.contains(QStringLiteral("WAITFOR")));
    m_previews.last->cancel();
    finish();
}
