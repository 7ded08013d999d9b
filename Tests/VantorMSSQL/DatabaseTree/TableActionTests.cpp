#include "Database/VantorDatabaseConnectionPool.h"
#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Foundation/KNFormat.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/RecordingWorkspace.h"
#include "Support/SampleServerFixture.h"
#include "Support/TreeTesting.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"
#include "UI/MSSQLUserInterface.h"
#include "UI/RowEditing/KNEditRowModel.h"
#include "UI/RowEditing/KNEditRowWindowController.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"
#include "UI/TableDesigner/MSSQLRenameTableWindowController.h"
#include "UI/TableDesigner/MSSQLRenameWindowController.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>

using WindowTesting::waitFor;

namespace {

std::shared_ptr<MSSQLDatabaseConnectionDetails> sampleSettings()
{
    const auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()));
    details->setUsername(QString::fromLatin1(SampleServerFixture::User));
    details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    details->setDatabase(QStringLiteral("library"));
    details->setConnectionId(QStringLiteral("table-action-tests"));
    return details;
}

/// Actions of the tree that change tables, on a real server with two tables of one name.
class TableAction : public testing::Test
{
protected:
    TableAction()
        : m_workspace(*sampleSettings())
    {
        MSSQLUserInterface().addTreeActions(*m_helper, m_workspace);
        run("IF SCHEMA_ID('act') IS NULL EXEC('CREATE SCHEMA act')");
        for (const char *table : {"dbo.Acted", "act.Acted"}) {
            run(qPrintable(KNFormat("CREATE TABLE %@ (id int NOT NULL, name nvarchar(10) NULL)", table)));
            run(qPrintable(KNFormat("CREATE INDEX IX_Acted ON %@ (name)", table)));
        }
        m_root = MSSQLDatabaseTreeEntryServer::create();
        m_root->setContextHelper(m_helper);
        m_root->setDatabaseConnectionDetails(m_workspace.databaseConnectionDetails().get());
    }
    ~TableAction() override
    {
        for (const char *table : {"dbo.Acted", "act.Acted", "act.Renamed", "dbo.Renamed", "act.[Made-1]"})
            run(qPrintable(KNFormat("IF OBJECT_ID('%@') IS NOT NULL DROP TABLE %@", table, table)));
        EXPECT_TRUE(WindowTesting::settle());
    }

    void run(const char *sql)
    {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                client.executeNonQuery(QString::fromUtf8(sql), failure);
            },
            *m_workspace.databaseConnectionDetails(), &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    }
    /// Whether the condition holds on the server.
    bool holds(const char *condition)
    {
        bool answer = false;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(
                    KNFormat("SELECT CASE WHEN %@ THEN 1 ELSE 0 END", QString::fromUtf8(condition)), failure);
                answer = rows && rows->next() && rows->numberForColumnIndex(0).toBool();
            },
            *m_workspace.databaseConnectionDetails(), &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return answer;
    }
    TreeTesting::Ptr entry(std::initializer_list<const char *> path)
    {
        return TreeTesting::find(m_root, TreeTesting::list(path));
    }
    /// Chooses a drop and accepts its preview.
    void drop(const char *action, const TreeTesting::Ptr &entry)
    {
        ASSERT_TRUE(m_helper->performAction(QString::fromLatin1(action), entry));
        ASSERT_TRUE(m_previews.last);
        ASSERT_TRUE(waitFor([&] { return !m_previews.last->statements.isEmpty(); }));
        m_statement = m_previews.last->statements;
        m_titles = m_previews.last->titles();
        m_previews.last->accept(m_previews.last->statements);
        ASSERT_TRUE(waitFor([&] { return !m_previews.last || !m_previews.last->isRunning(); }));
    }

    /// Chooses a rename, enters the name and accepts; the preview is m_previews.last.
    void enterName(const char *action, const TreeTesting::Ptr &entry, const QString &newName)
    {
        ASSERT_TRUE(m_helper->performAction(QString::fromLatin1(action), entry));
        auto *const dialog = m_workspace.window.findChild<MSSQLRenameWindowController *>();
        ASSERT_NE(dialog, nullptr);
        auto *const field = dialog->findChild<QLineEdit *>();
        EXPECT_EQ(field->text(), entry->displayName());
        field->setText(newName);
        QTest::keyClick(field, Qt::Key_Return);
        ASSERT_TRUE(m_previews.last);
        ASSERT_TRUE(waitFor([&] { return !m_previews.last->statements.isEmpty(); }));
        m_statement = m_previews.last->statements;
        m_titles = m_previews.last->titles();
        WindowTesting::settle(); // the dialog deletes itself
    }
    void rename(const char *action, const TreeTesting::Ptr &entry, const QString &newName)
    {
        enterName(action, entry, newName);
        ASSERT_TRUE(m_previews.last);
        m_previews.last->accept(m_previews.last->statements);
        ASSERT_TRUE(waitFor([&] { return !m_previews.last || !m_previews.last->isRunning(); }));
        EXPECT_FALSE(m_previews.last)
            << m_previews.last->outcomes.front().error.localizedDescription().toStdString();
    }
    /// The columns in a designer of act.Acted that the action opens.
    const QTableView &designerGrid()
    {
        EXPECT_TRUE(m_helper->performAction(QStringLiteral("alterTable:"),
                                            entry({"library", "Tables", "act.Acted"})));
        const auto *const designer =
            m_workspace.opened.front()->findChild<MSSQLTableColumnDesignerViewController *>();
        return *designer->findChild<QTableView *>();
    }
    static bool shows(const QTableView &grid, const QString &name)
    {
        const QModelIndex first = grid.model()->index(0, 0);
        for (int column = 0; first.isValid() && column < grid.model()->columnCount(); ++column) {
            if (!grid.model()
                     ->match(first.siblingAtColumn(column), Qt::DisplayRole, name, 1, Qt::MatchExactly)
                     .isEmpty())
                return true;
        }
        return false;
    }
    /// The number on the server for a query in which %@ stands for the names' literals.
    bool exists(const char *query, const QString &name)
    {
        QString literal = name;
        literal.replace(QLatin1Char('\''), QLatin1String("''"));
        return holds(
            qPrintable(QStringLiteral("EXISTS (%1)")
                           .arg(QString::fromLatin1(query).replace(
                               QLatin1Char('?'), QLatin1String("N'") + literal + QLatin1Char('\'')))));
    }

    RecordingAlerts &m_alerts = RecordingAlerts::install();
    RecordingQueryPreview::Installation m_previews;
    RecordingProgressSheets m_sheets;
    RecordingWorkspace m_workspace;
    const std::shared_ptr<KNDatabaseTreeContextHelper> m_helper =
        std::make_shared<KNDatabaseTreeContextHelper>();
    std::shared_ptr<MSSQLDatabaseTreeEntryServer> m_root;
    QString m_statement;
    KNQueryPreview::Titles m_titles;
};

} // namespace

TEST_F(TableAction, DropsTheTableThatIsShown)
{
    QStringList removed;
    const auto token = KNNotificationCenter::defaultCenter()->addObserver(
        KNDatabaseNotificationTable::TableRemovedNotificationName,
        [&](const QString &, const QVariantMap &info) {
            const auto table = KNDatabaseNotificationTable::fromUserInfo(info);
            removed = {table.tableSchema(), table.tableName()};
        });
    const TreeTesting::Ptr table = entry({"library", "Tables", "act.Acted"});
    m_workspace.selected = table;
    drop("confirmDropTable:", table);
    EXPECT_EQ(m_statement, QStringLiteral("DROP TABLE act.Acted"));
    EXPECT_EQ(m_titles.title, QStringLiteral("Do you really want to drop the table 'Acted'?"));
    EXPECT_EQ(m_titles.information, QStringLiteral("Once a table has been removed, it cannot be recovered."));
    EXPECT_EQ(m_titles.acceptTitle, QStringLiteral("Drop"));
    EXPECT_EQ(m_titles.progressTitle, QStringLiteral("Dropping Table 'Acted'"));
    EXPECT_TRUE(holds("OBJECT_ID('act.Acted') IS NULL AND OBJECT_ID('dbo.Acted') IS NOT NULL"));
    EXPECT_EQ(removed, TreeTesting::list({"act", "Acted"}));
    EXPECT_EQ(m_workspace.selected, nullptr);
}

TEST_F(TableAction, DropsAColumnAndAnIndexOfTheRightTable)
{
    drop("confirmDropIndex:", entry({"library", "Tables", "act.Acted", "Indexes", "IX_Acted"}));
    EXPECT_EQ(m_statement, QStringLiteral("DROP INDEX act.Acted.IX_Acted"));
    ASSERT_EQ(m_workspace.notifications.size(), 1u);
    EXPECT_EQ(m_workspace.notifications.front(),
              TreeTesting::list({"Index has been dropped", "Index IX_Acted has been dropped"}));
    const TreeTesting::Ptr column = entry({"library", "Tables", "act.Acted", "Columns", "name"});
    const TreeTesting::Ptr columns = column->parent();
    drop("confirmDropColumn:", column);
    EXPECT_EQ(m_statement, QStringLiteral("ALTER TABLE act.Acted DROP COLUMN name"));
    EXPECT_EQ(TreeTesting::names(columns), TreeTesting::list({"id"}));
    EXPECT_TRUE(holds("COL_LENGTH('act.Acted', 'name') IS NULL AND COL_LENGTH('dbo.Acted', 'name') = 20"));
}

TEST_F(TableAction, ACancelledDropChangesNothing)
{
    const TreeTesting::Ptr table = entry({"library", "Tables", "act.Acted"});
    ASSERT_TRUE(m_helper->performAction(QStringLiteral("confirmDropTable:"), table));
    m_previews.last->cancel();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_TRUE(holds("OBJECT_ID('act.Acted') IS NOT NULL"));
    const auto children = table->parent()->childEntries();
    EXPECT_NE(std::find(children->begin(), children->end(), table), children->end());
}

TEST_F(TableAction, AFailedDropKeepsTheEntryAndShowsTheError)
{
    const TreeTesting::Ptr table = entry({"library", "Tables", "act.Acted"});
    run("DROP TABLE act.Acted"); // somebody else was faster
    drop("confirmDropTable:", table);
    ASSERT_TRUE(m_previews.last);
    ASSERT_EQ(m_previews.last->outcomes.size(), 1u);
    EXPECT_EQ(m_previews.last->outcomes.front().error.domain(), QStringLiteral("MSSQL::dropTable"));
    const auto children = table->parent()->childEntries();
    EXPECT_NE(std::find(children->begin(), children->end(), table), children->end());
    m_previews.last->cancel();
}

TEST_F(TableAction, AViewIsNeitherDroppedAsATableNorRenamed)
{
    run("IF OBJECT_ID('act.ActedView') IS NULL EXEC('CREATE VIEW act.ActedView AS SELECT 1 AS a')");
    const TreeTesting::Ptr view = entry({"library", "Views", "act.ActedView"});
    EXPECT_TRUE(m_helper->performAction(QStringLiteral("confirmDropTable:"), view));
    EXPECT_TRUE(m_helper->performAction(QStringLiteral("renameTable:"), view));
    EXPECT_FALSE(m_previews.last);
    EXPECT_EQ(m_workspace.window.findChild<QDialog *>(), nullptr);
    drop("confirmDropView:", view);
    EXPECT_TRUE(holds("OBJECT_ID('act.ActedView') IS NULL"));
}

TEST_F(TableAction, RenamesAfterAskingForAValidName)
{
    const TreeTesting::Ptr table = entry({"library", "Tables", "act.Acted"});
    ASSERT_TRUE(m_helper->performAction(QStringLiteral("alterTable:"), table)); // follows the rename
    ASSERT_TRUE(m_helper->performAction(QStringLiteral("renameTable:"), table));
    auto *const dialog = m_workspace.window.findChild<MSSQLRenameTableWindowController *>();
    ASSERT_NE(dialog, nullptr);
    auto *const field = dialog->findChild<QLineEdit *>();
    QPushButton *const accept = dialog->findChildren<QPushButton *>().last();
    for (const char *invalid : {"  ", "a-b", "a b"}) {
        field->setText(QString::fromLatin1(invalid));
        accept->click();
        ASSERT_FALSE(m_alerts.errors.empty());
        EXPECT_EQ(m_alerts.errors.back().localizedDescription(),
                  QStringLiteral("The specified table name is invalid."));
        EXPECT_FALSE(dialog->closed());
    }
    m_alerts.errors.clear();
    field->setText(QStringLiteral(" Renamed "));
    accept->click();
    EXPECT_TRUE(waitFor([&] { return !m_workspace.refreshed.empty(); }));
    EXPECT_TRUE(m_alerts.errors.empty());
    ASSERT_EQ(m_sheets.all.size(), 1u);
    EXPECT_EQ(m_sheets.all.front()->labels, TreeTesting::list({"Renaming Table"}));
    EXPECT_FALSE(m_sheets.all.front()->isShown);
    EXPECT_EQ(m_workspace.refreshed.front(), table->parent());
    EXPECT_EQ(m_workspace.opened.front()->title(), QStringLiteral("Renamed"));
    EXPECT_TRUE(holds("OBJECT_ID('act.Renamed') IS NOT NULL AND OBJECT_ID('dbo.Acted') IS NOT NULL"));
}

TEST_F(TableAction, ShowsWhyARenameFailed)
{
    run("CREATE TABLE act.Renamed (a int)");
    const TreeTesting::Ptr table = entry({"library", "Tables", "act.Acted"});
    ASSERT_TRUE(m_helper->performAction(QStringLiteral("renameTable:"), table));
    auto *const dialog = m_workspace.window.findChild<MSSQLRenameTableWindowController *>();
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QLineEdit *>()->setText(QStringLiteral("Renamed"));
    dialog->findChildren<QPushButton *>().last()->click();
    EXPECT_TRUE(waitFor([&] { return !m_alerts.errors.empty(); }));
    EXPECT_TRUE(m_workspace.refreshed.empty());
}

TEST_F(TableAction, RenamesAColumnAnIndexAndAKeyOfTheRightTable)
{
    run("ALTER TABLE act.Acted ADD CONSTRAINT PK_Acted PRIMARY KEY (id)");
    const TreeTesting::Ptr index = entry({"library", "Tables", "act.Acted", "Indexes", "IX_Acted"});
    const TreeTesting::Ptr column = entry({"library", "Tables", "act.Acted", "Columns", "name"});
    const TreeTesting::Ptr key = entry({"library", "Tables", "act.Acted", "Keys", "PK_Acted"});

    rename("renameColumn:", column, QStringLiteral(" label "));
    EXPECT_EQ(m_statement, QStringLiteral("EXEC sp_rename N'[act].[Acted].[name]', N'label', N'COLUMN'"));
    EXPECT_EQ(m_titles.title, QStringLiteral("Rename the column 'name' to 'label'?"));
    EXPECT_EQ(m_titles.acceptTitle, QStringLiteral("Rename"));
    EXPECT_TRUE(holds("COL_LENGTH('act.Acted', 'label') = 20 AND COL_LENGTH('act.Acted', 'name') IS NULL"));
    EXPECT_TRUE(holds("COL_LENGTH('dbo.Acted', 'name') = 20"));

    rename("renameIndex:", index, QStringLiteral("IX_Label"));
    EXPECT_EQ(m_statement,
              QStringLiteral("EXEC sp_rename N'[act].[Acted].[IX_Acted]', N'IX_Label', N'INDEX'"));
    EXPECT_TRUE(holds("EXISTS (SELECT 1 FROM sys.indexes WHERE name = 'IX_Label' AND object_id = "
                      "OBJECT_ID('act.Acted'))"));
    EXPECT_TRUE(holds("EXISTS (SELECT 1 FROM sys.indexes WHERE name = 'IX_Acted' AND object_id = "
                      "OBJECT_ID('dbo.Acted'))"));

    m_workspace.refreshed.clear();
    rename("renameKey:", key, QStringLiteral("PK_Label"));
    EXPECT_EQ(m_statement, QStringLiteral("EXEC sp_rename N'[act].[PK_Acted]', N'PK_Label', N'OBJECT'"));
    EXPECT_TRUE(holds("OBJECT_ID('act.PK_Label') IS NOT NULL AND OBJECT_ID('act.PK_Acted') IS NULL"));
    const std::vector<TreeTesting::Ptr> lists{column->parent(), key->parent(), index->parent()};
    EXPECT_EQ(m_workspace.refreshed, lists) << "the index of the key has its name";
}

TEST_F(TableAction, RenamesToAndFromOddNames)
{
    run("ALTER TABLE act.Acted ADD CONSTRAINT PK_Acted PRIMARY KEY (id)");
    QString columnName = QStringLiteral("name");
    QString indexName = QStringLiteral("IX_Acted");
    QString keyName = QStringLiteral("PK_Acted");
    const QStringList names{QStringLiteral("a]b"),
                            QStringLiteral("it's"),
                            QStringLiteral("a.b.c"),
                            QStringLiteral("[x]"),
                            QString::fromUtf8("\xf0\x9f\x93\xa6 \"Gr\xc3\xb6\xc3\x9f"
                                              "e\""),
                            QString(128, QLatin1Char(']'))};
    for (const QString &name : names) {
        const auto section = [&](const char *list, const QString &part) {
            return TreeTesting::find(entry({"library", "Tables", "act.Acted", list}), {part});
        };
        rename("renameColumn:", section("Columns", columnName), name);
        EXPECT_TRUE(
            exists("SELECT 1 FROM sys.columns WHERE name = ? AND object_id = OBJECT_ID('act.Acted')", name));
        rename("renameIndex:", section("Indexes", indexName), QLatin1Char('i') + name.left(127));
        EXPECT_TRUE(exists("SELECT 1 FROM sys.indexes WHERE name = ? AND object_id = OBJECT_ID('act.Acted')",
                           QLatin1Char('i') + name.left(127)));
        rename("renameKey:", section("Keys", keyName), QLatin1Char('k') + name.left(127));
        EXPECT_TRUE(exists("SELECT 1 FROM sys.key_constraints WHERE name = ? AND parent_object_id = "
                           "OBJECT_ID('act.Acted')",
                           QLatin1Char('k') + name.left(127)));
        columnName = name;
        indexName = QLatin1Char('i') + name.left(127);
        keyName = QLatin1Char('k') + name.left(127);
        for (const char *list : {"Columns", "Indexes", "Keys"})
            TreeTesting::load(entry({"library", "Tables", "act.Acted", list}), true);
    }
    EXPECT_TRUE(holds("COL_LENGTH('dbo.Acted', 'name') = 20"));
}

TEST_F(TableAction, AnOpenDesignerShowsARenamedColumn)
{
    const QTableView &grid = designerGrid();
    ASSERT_TRUE(waitFor([&] { return shows(grid, QStringLiteral("name")); }));
    rename("renameColumn:", entry({"library", "Tables", "act.Acted", "Columns", "name"}),
           QStringLiteral("label"));
    EXPECT_TRUE(waitFor(
        [&] { return shows(grid, QStringLiteral("label")) && !shows(grid, QStringLiteral("name")); }));
}

TEST_F(TableAction, AnOpenDesignerShowsThatAColumnOrItsTableIsDropped)
{
    const QTableView &grid = designerGrid();
    ASSERT_TRUE(waitFor([&] { return shows(grid, QStringLiteral("name")); }));
    drop("confirmDropIndex:", entry({"library", "Tables", "act.Acted", "Indexes", "IX_Acted"}));
    drop("confirmDropColumn:", entry({"library", "Tables", "act.Acted", "Columns", "name"}));
    EXPECT_TRUE(waitFor([&] { return !shows(grid, QStringLiteral("name")); }));
    EXPECT_TRUE(shows(grid, QStringLiteral("id")));
    drop("confirmDropTable:", entry({"library", "Tables", "act.Acted"}));
    EXPECT_TRUE(waitFor([&] { return grid.model()->rowCount() == 0; }));
}

TEST_F(TableAction, ARenameNeedsAnotherNameThatAServerTakes)
{
    ASSERT_TRUE(m_helper->performAction(QStringLiteral("renameColumn:"),
                                        entry({"library", "Tables", "act.Acted", "Columns", "name"})));
    auto *const dialog = m_workspace.window.findChild<MSSQLRenameWindowController *>();
    ASSERT_NE(dialog, nullptr);
    auto *const field = dialog->findChild<QLineEdit *>();
    for (const char *invalid : {"", "  ", "name", " name ", "a\tb"}) {
        field->setText(QString::fromLatin1(invalid));
        QTest::keyClick(field, Qt::Key_Return);
        EXPECT_FALSE(dialog->closed()) << invalid;
    }
    field->setText(QStringLiteral("NAME")); // another name where case matters
    EXPECT_EQ(dialog->newName(), QStringLiteral("NAME"));
    QTest::keyClick(field, Qt::Key_Escape);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_FALSE(m_previews.last);
    EXPECT_TRUE(holds("COL_LENGTH('act.Acted', 'name') = 20"));
}

TEST_F(TableAction, AFailedRenameStaysOpenAndRefreshesNothing)
{
    enterName("renameColumn:", entry({"library", "Tables", "act.Acted", "Columns", "name"}),
              QStringLiteral("id"));
    m_previews.last->accept(m_statement);
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->isRunning(); }));
    ASSERT_EQ(m_previews.last->outcomes.size(), 1u);
    EXPECT_EQ(m_previews.last->outcomes.front().error.domain(), QStringLiteral("MSSQL::renameColumn"));
    EXPECT_TRUE(m_workspace.refreshed.empty());
    m_previews.last->cancel();
}

TEST_F(TableAction, AColumnOfAViewIsNotRenamed)
{
    run("IF OBJECT_ID('act.ActedView') IS NULL EXEC('CREATE VIEW act.ActedView AS SELECT 1 AS a')");
    const TreeTesting::Ptr column = entry({"library", "Views", "act.ActedView", "Columns", "a"});
    const QStringList titles = TreeTesting::titles(column->contextMenu());
    EXPECT_FALSE(titles.contains(QStringLiteral("Rename column"))) << titles.join(u',').toStdString();
    EXPECT_TRUE(m_helper->performAction(QStringLiteral("renameColumn:"), column));
    EXPECT_EQ(m_workspace.window.findChild<QDialog *>(), nullptr);
    run("DROP VIEW act.ActedView");
}

TEST_F(TableAction, CreatesATableAndOpensItsDesigner)
{
    QStringList added;
    const auto token = KNNotificationCenter::defaultCenter()->addObserver(
        KNDatabaseNotificationTable::TableAddedNotificationName,
        [&](const QString &, const QVariantMap &info) {
            const auto table = KNDatabaseNotificationTable::fromUserInfo(info);
            added = {table.tableSchema(), table.tableName()};
        });
    ASSERT_TRUE(m_helper->performAction(QStringLiteral("addNewTable:"), QStringLiteral("")));
    auto *const dialog = m_workspace.window.findChild<MSSQLCreateTableWindowController *>();
    ASSERT_NE(dialog, nullptr);
    auto *const schema = dialog->findChild<QComboBox *>();
    ASSERT_TRUE(waitFor([&] { return schema->findText(QStringLiteral("act")) >= 0; }));
    EXPECT_EQ(schema->currentText(), QStringLiteral("dbo"));
    schema->setEditText(QStringLiteral("act"));
    auto *const name = dialog->findChild<QLineEdit *>();
    QPushButton *accept = nullptr;
    for (QPushButton *const button : dialog->findChildren<QPushButton *>()) {
        if (button->isDefault())
            accept = button;
    }
    ASSERT_NE(accept, nullptr);
    accept->click();
    ASSERT_EQ(m_alerts.errors.size(), 1u);
    EXPECT_EQ(m_alerts.errors.front().localizedDescription(),
              QStringLiteral("The specified table name is invalid."));
    m_alerts.errors.clear();
    name->setText(QStringLiteral("Made-1")); // a hyphen is allowed here, though not in a rename
    accept->click();
    ASSERT_TRUE(waitFor([&] { return !m_workspace.opened.empty() || !m_alerts.errors.empty(); }));
    EXPECT_TRUE(m_alerts.errors.empty());
    ASSERT_EQ(m_sheets.all.size(), 1u);
    EXPECT_EQ(m_sheets.all.front()->labels, TreeTesting::list({"Creating table. Please wait."}));
    EXPECT_EQ(m_workspace.opened.front()->title(), QStringLiteral("Made-1"));
    EXPECT_EQ(added, TreeTesting::list({"act", "Made-1"}));
    EXPECT_TRUE(holds("COLUMNPROPERTY(OBJECT_ID('act.[Made-1]'), 'Id', 'IsIdentity') = 1"));
}

TEST_F(TableAction, ADoubleClickOnAColumnOrIndexOpensTheDesigner)
{
    entry({"library", "Tables", "act.Acted", "Columns", "name"})->onDoubleClicked();
    ASSERT_EQ(m_workspace.opened.size(), 1);
    EXPECT_EQ(m_workspace.opened.front()->title(), QStringLiteral("Acted"));
    entry({"library", "Tables", "act.Acted", "Indexes", "IX_Acted"})->onDoubleClicked();
    EXPECT_EQ(m_workspace.opened.size(), 1);
    EXPECT_EQ(m_workspace.shown, m_workspace.opened.front());
}

TEST(CreateTable, HasTheExactStatement)
{
    EXPECT_EQ(MSSQLCreateTableWindowController::creationQueryForColumns({}, QStringLiteral("T"),
                                                                        QStringLiteral("dbo")),
              QStringLiteral("CREATE TABLE dbo.T (\r\nColumn1 int\r\n);"));
}

TEST_F(TableAction, InsertRowOpensTheFormOfTheTable)
{
    const auto table = entry({"library", "Tables", "act.Acted"});
    ASSERT_TRUE(m_helper->performAction(QStringLiteral("displayInsertDialog:"), table));
    auto *const form = m_workspace.sheetParent()->findChild<KNEditRowWindowController *>();
    ASSERT_TRUE(form);
    ASSERT_TRUE(waitFor([&] { return form->model()->rowCount() == 2; }));
    EXPECT_EQ(form->windowTitle(), QStringLiteral("New Row in act.Acted"));
    form->model()->setData(form->model()->index(0, KNEditRowModel::Value), QStringLiteral("5"));
    form->apply();
    ASSERT_TRUE(waitFor([&] { return !form->model()->isLocked(); }));
    EXPECT_TRUE(m_alerts.errors.empty());
    EXPECT_TRUE(holds("EXISTS (SELECT * FROM act.Acted WHERE id = 5)"));
    EXPECT_TRUE(holds("NOT EXISTS (SELECT * FROM dbo.Acted)"));
    form->reject();
}
