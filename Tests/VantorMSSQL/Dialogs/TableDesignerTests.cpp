#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNUserDefaults.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/RecordingWorkspace.h"
#include "Support/SampleServerFixture.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/TableDesigner/MSSQLEditForeignKeyWindowController.h"
#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableListForeignKeysViewController.h"
#include "UI/TableDesigner/MSSQLTableTriggerDesignerViewController.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTableWidget>

using WindowTesting::waitFor;
using Column = MSSQLColumnGridModel::Column;

namespace {

std::shared_ptr<MSSQLDatabaseConnectionDetails> librarySettings()
{
    const auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()));
    details->setUsername(QString::fromLatin1(SampleServerFixture::User));
    details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    details->setDatabase(QStringLiteral("library"));
    details->setConnectionId(QStringLiteral("designer-tests"));
    return details;
}

/// A designer of des.Item, beside which stands dbo.Item: whatever is done to one must not be done to the
/// other.
class TableDesigner : public testing::Test
{
protected:
    explicit TableDesigner(bool usesCorrected = true)
    {
        KNUserDefaults::standardUserDefaults()->setObject(MSSQLCorrectedStatements::Key, usesCorrected);
        run("IF SCHEMA_ID('des') IS NULL EXEC('CREATE SCHEMA des')");
        for (const char *schema : {"dbo", "des"}) {
            run(KNFormat("CREATE TABLE %@.Item (id int NOT NULL, name nvarchar(20) NULL, amount int NOT NULL "
                         "CONSTRAINT DF_%@ DEFAULT 1)",
                         schema, schema));
            run(KNFormat("CREATE INDEX IX_Item ON %@.Item (name)", schema));
        }
        m_before = columnsOf("dbo");
        m_workspace.window.show();
        m_designer = std::make_unique<MSSQLTableDesignerViewController>(
            QStringLiteral("des"), QStringLiteral("Item"), m_settings, m_workspace);
        m_designer->resize(900, 600);
        m_designer->show();
        EXPECT_TRUE(waitFor([&] { return grid()->model()->rowCount() == 3; }));
    }
    ~TableDesigner() override
    {
        EXPECT_EQ(columnsOf("dbo"), m_before) << "the other table was changed";
        m_designer.reset();
        EXPECT_TRUE(WindowTesting::settle());
        for (const char *schema : {"dbo", "des"})
            run(KNFormat("IF OBJECT_ID('%@.Item') IS NOT NULL DROP TABLE %@.Item", schema, schema));
        KNUserDefaults::standardUserDefaults()->removeObject(MSSQLCorrectedStatements::Key);
    }

    void run(const QString &sql)
    {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) { client.executeNonQuery(sql, failure); },
            *m_settings, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    }
    void run(const char *sql) { run(QString::fromUtf8(sql)); }
    /// "name type null default pk" of each column of the schema's table.
    QStringList columnsOf(const char *schema)
    {
        KNError error;
        const auto columns = MSSQLTableColumnDesignerViewController::loadTable(
            QStringLiteral("Item"), QString::fromLatin1(schema), m_settings.get(), &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        QStringList texts;
        for (const MSSQLColumnRecord &column : columns)
            texts.append(
                KNFormat("%@ %@%@%@%@", column.columnName, column.displayType(),
                         column.isNullable ? " null" : "", column.isPrimaryKey ? " pk" : "",
                         column.defaultValue.isNull() ? QStringLiteral("") : u' ' + column.defaultValue));
        return texts;
    }
    template <typename Page>
    Page *page()
    {
        Page *const found = m_designer->findChild<Page *>();
        m_designer->tabs()->setCurrentWidget(found);
        return found;
    }
    MSSQLTableColumnDesignerViewController *columns()
    {
        return m_designer->findChild<MSSQLTableColumnDesignerViewController *>();
    }
    QTableView *grid() { return columns()->grid(); }
    /// Waits until the change has run and the grid shows the server's columns.
    void finish()
    {
        EXPECT_TRUE(waitFor([&] { return !m_designer->session().isBusy() && !columns()->isLoading(); }));
    }
    void edit(int row, Column column, const QVariant &value)
    {
        QAbstractItemModel *const model = grid()->model();
        const bool isCheck = value.metaType().id() == QMetaType::Bool;
        model->setData(model->index(row, column),
                       isCheck ? QVariant(value.toBool() ? Qt::Checked : Qt::Unchecked) : value,
                       isCheck ? Qt::CheckStateRole : Qt::EditRole);
        finish();
    }

    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings = librarySettings();
    RecordingAlerts &m_alerts = RecordingAlerts::install();
    RecordingQueryPreview::Installation m_previews;
    RecordingWorkspace m_workspace{*m_settings};
    std::unique_ptr<MSSQLTableDesignerViewController> m_designer;
    QStringList m_before;
};

class ExactTableDesigner : public TableDesigner
{
protected:
    ExactTableDesigner()
        : TableDesigner(false)
    {
    }
};

} // namespace

TEST_F(TableDesigner, HasItsTabsInOrder)
{
    QStringList titles;
    for (int i = 0; i < m_designer->tabs()->count(); ++i)
        titles.append(m_designer->tabs()->tabText(i));
    EXPECT_EQ(titles, (QStringList{QStringLiteral("Columns"), QStringLiteral("Indexes"),
                                   QStringLiteral("Foreign Keys"), QStringLiteral("Triggers"),
                                   QStringLiteral("Details")}));
    EXPECT_EQ(m_designer->tabs()->widget(2)->objectName(), QStringLiteral("ForeignKeys"));
    EXPECT_EQ(m_designer->title(), QStringLiteral("Item"));
}

TEST_F(TableDesigner, BeginsInTheFirstColumnAndGivesTheFocusToTheShownTab)
{
    EXPECT_EQ(grid()->currentIndex(), grid()->model()->index(0, Column::Field));
    m_designer->setFocus();
    EXPECT_EQ(m_designer->focusWidget(), grid());
    const auto *const triggers = page<MSSQLTableTriggerDesignerViewController>();
    m_designer->setFocus();
    EXPECT_EQ(m_designer->focusWidget(), triggers->list());
}

TEST_F(TableDesigner, KeepsTheIndexOfAKeyThatIsMadeAgain)
{
    run("ALTER TABLE des.Item ADD CONSTRAINT PK_des PRIMARY KEY NONCLUSTERED (id) WITH (FILLFACTOR = 70, "
        "PAD_INDEX = ON)");
    run("ALTER TABLE des.Item ALTER COLUMN name nvarchar(20) NOT NULL");
    columns()->reload();
    finish();
    edit(1, Column::Primary, true);
    EXPECT_TRUE(m_alerts.messages.empty());
    ASSERT_EQ(m_designer->session().executedScripts().size(), 1);
    EXPECT_TRUE(m_designer->session().executedScripts().first().contains(
        QStringLiteral("ADD CONSTRAINT PK_des PRIMARY KEY NONCLUSTERED (id, name) "
                       "WITH (FILLFACTOR = 70, PAD_INDEX = ON);")));
}

TEST_F(TableDesigner, ChangesEachCellAndShowsWhatTheServerHas)
{
    edit(1, Column::Field, QStringLiteral("title"));
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("title nvarchar(20) null"));
    edit(1, Column::Type, QStringLiteral("nvarchar(40)"));
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("title nvarchar(40) null"));
    edit(1, Column::Nullable, false);
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("title nvarchar(40)"));
    edit(1, Column::Default, QStringLiteral("'it''s'"));
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("title nvarchar(40) ('it''s')"));
    edit(1, Column::Default, QString::fromLatin1(""));
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("title nvarchar(40)"));
    edit(0, Column::Primary, true);
    EXPECT_EQ(columnsOf("des")[0], QStringLiteral("id int pk"));
    edit(0, Column::Primary, false);
    EXPECT_EQ(columnsOf("des")[0], QStringLiteral("id int"));
    EXPECT_TRUE(m_alerts.messages.empty());
    EXPECT_EQ(grid()->model()->index(1, Column::Field).data().toString(), QStringLiteral("title"));
    EXPECT_EQ(m_designer->session().executedScripts().size(), 7);
    EXPECT_EQ(m_designer->changeScript().count(QStringLiteral("\r\nGO\r\n")), 7);
    auto *const log = m_designer->findChild<KNSQLEditor *>();
    EXPECT_GT(log->firstVisibleLine(), 0); // the last change is visible
}

TEST_F(TableDesigner, AddsAColumnAndEditsItsNameByKeyboard)
{
    columns()->addNewColumn();
    finish();
    EXPECT_EQ(columnsOf("des").last(), QStringLiteral("NewColumn1 int null"));
    ASSERT_TRUE(waitFor([&] { return grid()->findChild<QLineEdit *>() != nullptr; }));
    auto *const editor = grid()->findChild<QLineEdit *>();
    editor->setText(QStringLiteral("added"));
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { return m_designer->session().executedScripts().size() == 2; }));
    finish();
    EXPECT_EQ(columnsOf("des").last(), QStringLiteral("added int null"));
}

TEST_F(TableDesigner, OffersTypesWithTheAliasTypesOfTheDatabase)
{
    grid()->setCurrentIndex(grid()->model()->index(0, Column::Type));
    grid()->edit(grid()->currentIndex());
    auto *const box = grid()->findChild<QComboBox *>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->currentText(), QStringLiteral("int"));
    EXPECT_GE(box->findText(QStringLiteral("datetime2(7)")), 0);
    box->setEditText(QStringLiteral("bigint"));
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(waitFor([&] { return m_designer->session().executedScripts().size() == 1; }));
    finish();
    EXPECT_EQ(columnsOf("des")[0], QStringLiteral("id bigint"));
}

TEST_F(TableDesigner, AsksBeforeATypeThatDoesNotHoldAllValues)
{
    run("INSERT INTO des.Item (id, name) VALUES (1, N'a'), (2, N'a longer name'), (3, NULL)");
    edit(1, Column::Type, QStringLiteral("nvarchar(5)"));
    ASSERT_TRUE(waitFor([&] { return !m_alerts.questions.empty(); }));
    EXPECT_EQ(m_alerts.questions[0].title,
              QStringLiteral("Change the type of 'name' from nvarchar(20) to nvarchar(5)?"));
    EXPECT_EQ(m_alerts.questions[0].text,
              QStringLiteral("1 row has a value that the new type does not hold."));
    m_alerts.pending[0](0);
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("name nvarchar(20) null"));
    edit(1, Column::Type, QStringLiteral("nvarchar(13)"));
    ASSERT_TRUE(waitFor([&] { return m_alerts.questions.size() == 2; }));
    EXPECT_EQ(m_alerts.questions[1].text,
              QStringLiteral("0 rows have values that the new type does not hold."));
    m_alerts.pending[1](1);
    ASSERT_TRUE(waitFor([&] { return m_designer->session().executedScripts().size() == 1; }));
    finish();
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("name nvarchar(13) null"));
    run("DELETE FROM des.Item");
}

TEST_F(TableDesigner, RefusesANullableKey)
{
    edit(1, Column::Primary, true);
    ASSERT_EQ(m_alerts.errors.size(), 1u);
    EXPECT_EQ(m_alerts.errors.front().localizedDescription(),
              QStringLiteral("You must disable 'nullable' before this column can become a primary key."));
    EXPECT_TRUE(m_designer->session().executedScripts().isEmpty());
}

TEST_F(TableDesigner, ShowsTheErrorAndTheStatementOfARefusedChange)
{
    const QStringList before = columnsOf("des");
    edit(0, Column::Type, QStringLiteral("notatype"));
    ASSERT_TRUE(waitFor([&] { return !m_alerts.pending.empty(); }));
    EXPECT_EQ(m_alerts.questions.front().text,
              QStringLiteral("It is unknown how many rows have values that the new type does not hold."));
    m_alerts.pending.front()(1);
    EXPECT_TRUE(waitFor([&] { return !m_alerts.messages.empty(); }));
    finish();
    ASSERT_EQ(m_alerts.messages.size(), 1u);
    const QString text = m_alerts.messages.front().at(1);
    EXPECT_TRUE(text.startsWith(QStringLiteral("Error: "))) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("\r\nQuery was: BEGIN TRY\r\nBEGIN TRANSACTION")));
    EXPECT_EQ(columnsOf("des"), before);
    EXPECT_EQ(grid()->model()->index(0, Column::Type).data().toString(), QStringLiteral("int"));
}

TEST_F(TableDesigner, DropsAColumnAfterAsking)
{
    grid()->setCurrentIndex(grid()->model()->index(2, Column::Field));
    run("ALTER TABLE des.Item DROP CONSTRAINT DF_des");
    columns()->handleDeleteColumn();
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_EQ(m_alerts.questions.front().title, QStringLiteral("Drop column 'amount'?"));
    EXPECT_EQ(m_alerts.questions.front().text, QStringLiteral("Dropping a column cannot be recovered."));
    m_alerts.pending.front()(1);
    finish();
    EXPECT_EQ(columnsOf("des").size(), 2);
}

TEST_F(TableDesigner, KeepsTheLastColumn)
{
    run("DROP INDEX IX_Item ON des.Item");
    run("ALTER TABLE des.Item DROP CONSTRAINT DF_des");
    run("ALTER TABLE des.Item DROP COLUMN name, amount");
    columns()->reload();
    finish();
    grid()->setCurrentIndex(grid()->model()->index(0, Column::Field));
    columns()->handleDeleteColumn();
    ASSERT_EQ(m_alerts.messages.size(), 1u);
    EXPECT_EQ(m_alerts.messages.front(),
              (QStringList{QStringLiteral("Unable to remove column"),
                           QStringLiteral("The last column cannot be removed from a table. Please remove the "
                                          "table instead.")}));
}

TEST_F(TableDesigner, EditsAnIndexThroughItsStatements)
{
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>();
    ASSERT_TRUE(waitFor([&] { return indexes->list()->topLevelItemCount() == 1; }));
    indexes->list()->setCurrentItem(indexes->list()->topLevelItem(0));
    indexes->indexTableViewDoubleClicked();
    auto *const editor = m_designer->findChild<MSSQLEditIndexWindowController *>();
    ASSERT_NE(editor, nullptr);
    const auto lists = editor->findChildren<QListWidget *>();
    ASSERT_EQ(lists.size(), 2);
    ASSERT_TRUE(waitFor([&] { return lists[0]->count() + lists[1]->count() == 3; }));
    QListWidget *const available = lists[0]->count() == 2 ? lists[0] : lists[1];
    editor->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(editor));
    available->setFocus();
    available->setCurrentRow(0);
    QTest::keyClick(available, Qt::Key_Return);
    EXPECT_FALSE(m_previews.last); // the key does not apply the changes as well
    QPushButton *accept = nullptr;
    for (QPushButton *const button : editor->findChildren<QPushButton *>()) {
        if (button->isDefault())
            accept = button;
    }
    ASSERT_NE(accept, nullptr);
    accept->click();
    ASSERT_TRUE(m_previews.last);
    ASSERT_TRUE(waitFor([&] { return !m_previews.last->statements.isEmpty(); }));
    EXPECT_EQ(m_previews.last->titles().title, QStringLiteral("Alter index"));
    EXPECT_EQ(m_previews.last->titles().information,
              QStringLiteral("The index will be modifed using the following queries."));
    m_previews.last->accept(m_previews.last->statements);
    ASSERT_TRUE(waitFor([&] { return !m_previews.last; }));
    EXPECT_TRUE(waitFor([&] {
        return indexes->list()->topLevelItemCount() == 1 &&
               indexes->list()->topLevelItem(0)->text(1) == QStringLiteral("name, id");
    }));
    EXPECT_EQ(m_designer->session().executedScripts().size(), 1);
}

TEST_F(TableDesigner, RefusesAnIndexWithoutNameOrColumns)
{
    page<MSSQLTableIndexDesignerViewController>()->addNewIndex();
    auto *const editor = m_designer->findChild<MSSQLEditIndexWindowController *>();
    ASSERT_NE(editor, nullptr);
    QPushButton *accept = nullptr;
    for (QPushButton *const button : editor->findChildren<QPushButton *>()) {
        if (button->isDefault())
            accept = button;
    }
    ASSERT_NE(accept, nullptr);
    accept->click();
    ASSERT_EQ(m_alerts.messages.size(), 1u);
    EXPECT_EQ(m_alerts.messages[0], (QStringList{QStringLiteral("You must specify an index name."),
                                                 QStringLiteral("Index name is required.")}));
    editor->findChild<QLineEdit *>()->setText(QStringLiteral("IX_New"));
    accept->click();
    ASSERT_EQ(m_alerts.messages.size(), 2u);
    EXPECT_EQ(m_alerts.messages[1], (QStringList{QStringLiteral("Please specify at least one column."),
                                                 QStringLiteral("You must specify at least one column.")}));
    EXPECT_FALSE(m_previews.last);
}

TEST_F(TableDesigner, ListsDropsAndDisablesTriggers)
{
    run("CREATE TRIGGER des.Item_Trigger ON des.Item AFTER INSERT AS\nPRINT 'x'");
    auto *const triggers = page<MSSQLTableTriggerDesignerViewController>();
    triggers->loadTriggers();
    ASSERT_TRUE(waitFor([&] { return triggers->list()->topLevelItemCount() == 1; }));
    QTreeWidgetItem *item = triggers->list()->topLevelItem(0);
    EXPECT_EQ(item->text(0), QStringLiteral("Item_Trigger"));
    EXPECT_FALSE(item->text(4).contains(u'\n'));
    EXPECT_EQ(item->text(3), QStringLiteral("yes"));
    triggers->list()->setCurrentItem(item);
    triggers->toggleSelected();
    EXPECT_TRUE(waitFor([&] {
        return triggers->list()->topLevelItemCount() == 1 &&
               triggers->list()->topLevelItem(0)->text(3) == QStringLiteral("no");
    }));
    triggers->list()->setCurrentItem(triggers->list()->topLevelItem(0));
    triggers->dropSelected();
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_EQ(m_alerts.questions.front().title,
              QStringLiteral("Do you really want to drop the trigger 'Item_Trigger'?"));
    EXPECT_EQ(m_alerts.questions.front().buttons.first(), QStringLiteral("Cancel")); // for the Return key
    m_alerts.pending.front()(1);
    EXPECT_TRUE(waitFor([&] { return triggers->list()->topLevelItemCount() == 0; }));
}

TEST_F(TableDesigner, ListsAndDropsForeignKeys)
{
    run("ALTER TABLE des.Item ADD CONSTRAINT PK_des PRIMARY KEY (id)");
    run("CREATE TABLE des.Part (item int NOT NULL CONSTRAINT FK_Part REFERENCES des.Item (id))");
    MSSQLTableDesignerViewController designer(QStringLiteral("des"), QStringLiteral("Part"), m_settings,
                                              m_workspace);
    auto *const keys = designer.findChild<MSSQLTableListForeignKeysViewController *>();
    ASSERT_TRUE(waitFor([&] { return keys->list()->topLevelItemCount() == 1; }));
    QStringList cells;
    for (int column = 0; column < 6; ++column)
        cells.append(keys->list()->topLevelItem(0)->text(column));
    EXPECT_EQ(cells,
              (QStringList{QStringLiteral("FK_Part"), QStringLiteral("des.Item"), QStringLiteral("item"),
                           QStringLiteral("id"), QStringLiteral("No Action"), QStringLiteral("No Action")}));
    keys->list()->setCurrentItem(keys->list()->topLevelItem(0));
    keys->dropSelected();
    EXPECT_EQ(m_alerts.questions.front().buttons.first(), QStringLiteral("Cancel")); // for the Return key
    m_alerts.pending.front()(1);
    EXPECT_TRUE(waitFor([&] { return keys->list()->topLevelItemCount() == 0; }));
    run("DROP TABLE des.Part");
    run("ALTER TABLE des.Item DROP CONSTRAINT PK_des");
}

TEST_F(TableDesigner, AddsAndChangesAForeignKeyThroughItsStatements)
{
    run("ALTER TABLE des.Item ADD CONSTRAINT PK_des PRIMARY KEY (id)");
    run("CREATE TABLE des.Part (item int NOT NULL, other bigint NULL)");
    {
        MSSQLTableDesignerViewController designer(QStringLiteral("des"), QStringLiteral("Part"), m_settings,
                                                  m_workspace);
        designer.show();
        auto *const keys = designer.findChild<MSSQLTableListForeignKeysViewController *>();
        const auto apply = [&](MSSQLEditForeignKeyWindowController *editor) {
            for (QPushButton *const button : editor->findChildren<QPushButton *>()) {
                if (button->isDefault())
                    button->click();
            }
        };
        const auto accept = [&] {
            ASSERT_TRUE(m_previews.last);
            ASSERT_TRUE(waitFor([&] { return !m_previews.last->statements.isEmpty(); }));
            m_previews.last->accept(m_previews.last->statements);
            ASSERT_TRUE(waitFor([&] { return !m_previews.last; }));
        };
        keys->addNewKey();
        QPointer editor = designer.findChild<MSSQLEditForeignKeyWindowController *>();
        ASSERT_TRUE(editor);
        ASSERT_TRUE(waitFor([&] { return editor->isLoaded(); }));
        apply(editor);
        ASSERT_EQ(m_alerts.messages.size(), 1u) << "a name is required";
        editor->findChild<QLineEdit *>()->setText(QStringLiteral("FK ]new"));
        auto *const tables = editor->findChild<QComboBox *>();
        QTableWidget *const pairs = editor->findChild<QTableWidget *>();
        tables->setCurrentIndex(tables->findText(QStringLiteral("des.Item")));
        ASSERT_TRUE(waitFor([&] { return pairs->rowCount() == 1; }));
        auto *const local = qobject_cast<QComboBox *>(pairs->cellWidget(0, 0));
        local->setCurrentText(QStringLiteral("other"));
        EXPECT_EQ(editor->typeProblem(), QStringLiteral("other is bigint, but id is int."));
        local->setCurrentText(QStringLiteral("item"));
        EXPECT_TRUE(editor->typeProblem().isNull());
        apply(editor);
        accept();
        ASSERT_TRUE(waitFor([&] { return keys->list()->topLevelItemCount() == 1; }));
        EXPECT_EQ(keys->list()->topLevelItem(0)->text(0), QStringLiteral("FK ]new"));

        keys->list()->setCurrentItem(keys->list()->topLevelItem(0));
        keys->editSelected();
        editor = designer.findChildren<MSSQLEditForeignKeyWindowController *>().last();
        ASSERT_TRUE(waitFor([&] { return editor->isLoaded(); }));
        EXPECT_EQ(editor->editedKey().localColumns, QStringList{QStringLiteral("item")});
        editor->findChildren<QComboBox *>().last()->setCurrentIndex(1);
        const MSSQLForeignKeyEntry edited = editor->editedKey();
        EXPECT_EQ(edited.deleteRule + edited.updateRule, 1);
        apply(editor);
        accept();
        EXPECT_TRUE(waitFor([&] {
            return keys->list()->topLevelItemCount() == 1 &&
                   (keys->list()->topLevelItem(0)->text(4) == QStringLiteral("Cascade") ||
                    keys->list()->topLevelItem(0)->text(5) == QStringLiteral("Cascade"));
        }));
        EXPECT_TRUE(WindowTesting::settle());
    }
    run("DROP TABLE des.Part");
    run("ALTER TABLE des.Item DROP CONSTRAINT PK_des");
}

TEST_F(ExactTableDesigner, AddsAColumnToTheTableOfItsSchemaWithoutAsking)
{
    columns()->addNewColumn();
    ASSERT_TRUE(waitFor([&] { return m_designer->session().executedScripts().size() == 1; }));
    finish();
    EXPECT_TRUE(m_alerts.questions.empty());
    EXPECT_EQ(m_designer->session().executedScripts().first(),
              QStringLiteral("ALTER TABLE des.Item ADD NewColumn1 INT"));
    EXPECT_EQ(columnsOf("des").last(), QStringLiteral("NewColumn1 int null"));
}

TEST_F(ExactTableDesigner, AsksBeforeAStatementThatMeansAnotherColumn)
{
    run("ALTER TABLE des.Item ADD [a, b] int NULL");
    columns()->reload();
    ASSERT_TRUE(waitFor([&] { return grid()->model()->rowCount() == 4; }));
    grid()->setCurrentIndex(grid()->model()->index(3, Column::Field));
    columns()->handleDeleteColumn();
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    m_alerts.pending.front()(1);
    ASSERT_TRUE(waitFor([&] { return m_alerts.questions.size() == 2; }));
    EXPECT_EQ(m_alerts.questions[1].buttons.value(0), QStringLiteral("Cancel"));
    EXPECT_EQ(m_alerts.questions[1].buttons.value(1), QStringLiteral("Use Corrected Statement"));
    EXPECT_TRUE(m_alerts.questions[1].text.contains(QStringLiteral("ALTER TABLE des.Item DROP COLUMN a, b")));
    EXPECT_TRUE(m_designer->session().executedScripts().isEmpty());
    m_alerts.pending[1](1);
    ASSERT_TRUE(waitFor([&] { return m_designer->session().executedScripts().size() == 1; }));
    finish();
    EXPECT_EQ(columnsOf("des").size(), 3);
}

TEST_F(TableDesigner, RefusesAColumnWithoutNameOrType)
{
    edit(0, Column::Field, QStringLiteral(" "));
    edit(0, Column::Type, QStringLiteral(" "));
    ASSERT_EQ(m_alerts.errors.size(), 2u);
    EXPECT_EQ(m_alerts.errors[0].localizedDescription(), QStringLiteral("A column needs a name."));
    EXPECT_EQ(m_alerts.errors[1].localizedDescription(), QStringLiteral("A column needs a type."));
    EXPECT_TRUE(m_designer->session().executedScripts().isEmpty());
}

TEST_F(ExactTableDesigner, RunsAnExactStatementThatDoesWhatIsMeantWithoutAsking)
{
    edit(1, Column::Type, QStringLiteral("nvarchar(30)"));
    EXPECT_TRUE(m_alerts.questions.empty());
    EXPECT_EQ(columnsOf("des")[1], QStringLiteral("name nvarchar(30) null"));
    EXPECT_TRUE(m_designer->session().executedScripts().first().contains(
        QStringLiteral("\r\n\r\nALTER TABLE des.Item ALTER COLUMN name nvarchar(30)\r\n\r\nCOMMIT TRAN")));
}

TEST_F(TableDesigner, OpensOnceForATable)
{
    MSSQLTableDesignerViewController::open(QStringLiteral("des"), QStringLiteral("Item"), m_settings,
                                           m_workspace);
    ASSERT_EQ(m_workspace.opened.size(), 1);
    MSSQLTableDesignerViewController::open(QStringLiteral("des"), QStringLiteral("Item"), m_settings,
                                           m_workspace);
    EXPECT_EQ(m_workspace.opened.size(), 1);
    EXPECT_EQ(m_workspace.shown, m_workspace.opened.first());
    EXPECT_TRUE(WindowTesting::settle());
}
