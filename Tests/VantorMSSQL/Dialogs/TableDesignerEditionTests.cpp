#include "Support/FakeCatalog.h"
#include "UI/TableDesigner/MSSQLEditForeignKeyWindowController.h"
#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"
#include "UI/TableDesigner/MSSQLRenameTableWindowController.h"
#include "UI/TableDesigner/MSSQLTableDetailsViewController.h"
#include "UI/TableDesigner/MSSQLTableIndexDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableListForeignKeysViewController.h"
#include "UI/TableDesigner/MSSQLTableTriggerDesignerViewController.h"
#include "VantorMSSQL/Dialogs/DesignerTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QPlainTextEdit>

using WindowTesting::waitFor;

namespace {

struct EditionServer
{
    explicit EditionServer(const char *edition)
        : server({.arguments = {"--edition", edition}})
    {
    }
    SampleServerFixture server;
};

class DesignerOfEdition : private EditionServer,
                          public DesignerTest,
                          public testing::WithParamInterface<const char *>
{
protected:
    DesignerOfEdition()
        : EditionServer(GetParam())
        , DesignerTest(server)
    {
        run("CREATE TABLE dbo.T (a int NOT NULL, b int NULL)");
        run("CREATE INDEX IX ON dbo.T (a DESC)");
        run("CREATE TRIGGER TR ON dbo.T AFTER INSERT AS PRINT 'x'");
        open(QStringLiteral("dbo"), QStringLiteral("T"));
    }

    static bool isOld() { return QLatin1String(GetParam()) == QLatin1String("2000"); }
    /// Opens the editor of a cell.
    template <typename Editor>
    Editor *editor(Column column)
    {
        grid()->setCurrentIndex(grid()->model()->index(1, column));
        grid()->edit(grid()->currentIndex());
        return grid()->findChild<Editor *>();
    }
};

/// A designer of dbo.T on a server that answers as a test wants.
class DesignerOfFake : public testing::Test
{
protected:
    ~DesignerOfFake() override
    {
        m_designer.reset();
        EXPECT_TRUE(WindowTesting::settle());
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }
    void open()
    {
        m_designer = std::make_unique<MSSQLTableDesignerViewController>(
            QStringLiteral("dbo"), QStringLiteral("T"), m_settings, m_workspace);
        m_designer->show();
        EXPECT_TRUE(WindowTesting::settle());
    }
    /// Waits until the tab shows this text in place of its rows.
    template <typename Page>
    void expectNotice(const QString &text) const
    {
        const auto *const tab = m_designer->findChild<Page *>();
        const auto isShown = [&] {
            const auto labels = tab->template findChildren<QLabel *>();
            return std::any_of(labels.begin(), labels.end(), [&](const QLabel *label) {
                return !label->isHidden() && label->text() == text;
            });
        };
        EXPECT_TRUE(waitFor(isShown)) << text.toStdString();
    }

    const std::shared_ptr<FakeCatalog::Server> m_server = FakeCatalog::Server::create();
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings = m_server->settings();
    RecordingAlerts &m_alerts = RecordingAlerts::install();
    RecordingWorkspace m_workspace{*m_settings};
    std::unique_ptr<MSSQLTableDesignerViewController> m_designer;
};

const KNError Denied(QStringLiteral("SQLClient"), 229, QStringLiteral("The SELECT permission was denied."));
const FakeCatalog::Rows OneColumn = {{"a", "int", nullptr, nullptr, nullptr, 0, 0, nullptr, 0, 0}};

} // namespace

INSTANTIATE_TEST_SUITE_P(Edition, DesignerOfEdition, testing::Values("2000", "2008", "2022", "azure"),
                         [](const auto &edition) { return "Of" + std::string(edition.param); });

TEST_P(DesignerOfEdition, OffersTheTypesAndFunctionsOfItsVersion)
{
    auto *const box = editor<QComboBox>(Column::Type);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->findText(QStringLiteral("datetime2(7)")) < 0, isOld());
    EXPECT_GE(box->findText(QStringLiteral("datetime")), 0);
    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return grid()->findChild<QComboBox *>() == nullptr; }));

    auto *const line = editor<QLineEdit>(Column::Default);
    ASSERT_NE(line, nullptr);
    line->completer()->setCompletionPrefix(QStringLiteral("sysdatetime()"));
    EXPECT_EQ(line->completer()->completionCount() == 0, isOld());
    line->completer()->setCompletionPrefix(QStringLiteral("getdate()"));
    EXPECT_EQ(line->completer()->completionCount(), 1);
}

TEST_P(DesignerOfEdition, OffersTheRulesOfItsVersion)
{
    page<MSSQLTableListForeignKeysViewController>()->addNewKey();
    auto *const key = m_designer->findChild<MSSQLEditForeignKeyWindowController *>();
    ASSERT_NE(key, nullptr);
    EXPECT_TRUE(waitFor([&] { return key->isLoaded(); }));
    for (const char *name : {"On update", "On delete"}) {
        QStringList rules;
        for (const QComboBox *box : key->findChildren<QComboBox *>()) {
            for (int i = 0; box->accessibleName() == QString::fromLatin1(name) && i < box->count(); ++i)
                rules.append(box->itemText(i));
        }
        EXPECT_EQ(rules.join(QStringLiteral(", ")),
                  isOld() ? QStringLiteral("No Action, Cascade")
                          : QStringLiteral("No Action, Cascade, SET NULL, SET DEFAULT"));
    }
}

TEST_P(DesignerOfEdition, ChangesAnIndexAndATrigger)
{
    auto *const indexes = page<MSSQLTableIndexDesignerViewController>();
    ASSERT_TRUE(select(indexes->list(), QStringLiteral("IX")));
    indexes->indexTableViewDoubleClicked();
    auto *const index = m_designer->findChild<MSSQLEditIndexWindowController *>();
    ASSERT_NE(index, nullptr);
    index->findChild<QCheckBox *>()->setChecked(true); // unique
    clickDefault(index);
    EXPECT_EQ(
        acceptPreview(),
        isOld()
            ? QStringLiteral("DROP INDEX dbo.T.IX;\r\nCREATE UNIQUE NONCLUSTERED INDEX IX ON dbo.T (a DESC);")
            : QStringLiteral(
                  "DROP INDEX IX ON dbo.T;\r\nCREATE UNIQUE NONCLUSTERED INDEX IX ON dbo.T (a DESC);"));
    EXPECT_EQ(rows(indexes->list()), QStringList{QStringLiteral("IX | a | Non-Clustered | yes")});

    auto *const triggers = page<MSSQLTableTriggerDesignerViewController>();
    ASSERT_TRUE(select(triggers->list(), QStringLiteral("TR")));
    triggers->toggleSelected();
    finish();
    EXPECT_TRUE(m_alerts.messages.empty());
    EXPECT_EQ(triggers->list()->topLevelItem(0)->text(3), QStringLiteral("no"));
}

TEST_P(DesignerOfEdition, ShowsTheNamesOfItsDetailsInFull)
{
    auto *const list = page<MSSQLTableDetailsViewController>()->findChild<QTreeWidget *>();
    ASSERT_TRUE(waitFor([&] { return list->topLevelItemCount() > 3; }));
    for (int row = 0; row < list->topLevelItemCount(); ++row) {
        const QString name = list->topLevelItem(row)->text(0);
        EXPECT_GT(list->columnWidth(0), list->fontMetrics().horizontalAdvance(name)) << name.toStdString();
    }
}

TEST_F(DesignerOfFake, SaysInEachTabThatTheTableIsNotThere)
{
    open();
    const QString missing = QStringLiteral("The table dbo.T was not found, or you have no right to see it.");
    expectNotice<MSSQLTableColumnDesignerViewController>(
        QStringLiteral("The table was not found, or you have no right to see its columns."));
    expectNotice<MSSQLTableIndexDesignerViewController>(missing);
    expectNotice<MSSQLTableListForeignKeysViewController>(missing);
    expectNotice<MSSQLTableTriggerDesignerViewController>(missing);
    expectNotice<MSSQLTableDetailsViewController>(
        QStringLiteral("The object was not found, or you have no right to see its properties."));
}

TEST_F(DesignerOfFake, SaysInEachTabWhatATableDoesNotHave)
{
    m_server->answer("ColumnsForTable", OneColumn);
    open();
    expectNotice<MSSQLTableIndexDesignerViewController>(QStringLiteral("The table has no indexes."));
    expectNotice<MSSQLTableListForeignKeysViewController>(QStringLiteral("The table has no foreign keys."));
    expectNotice<MSSQLTableTriggerDesignerViewController>(QStringLiteral("The table has no triggers."));
}

TEST_F(DesignerOfFake, ShowsInEachTabTheErrorThatALoginWithoutRightsGets)
{
    for (const char *title : {"ColumnsForTable", "List_IndexesAndColumnsForTable", "List_ForeignKeysForTable",
                              "List_TriggersForTableWithDetails", "Properties_Object"})
        m_server->fail(title, Denied);
    open();
    expectNotice<MSSQLTableColumnDesignerViewController>(Denied.localizedDescription());
    expectNotice<MSSQLTableIndexDesignerViewController>(Denied.localizedDescription());
    expectNotice<MSSQLTableListForeignKeysViewController>(Denied.localizedDescription());
    expectNotice<MSSQLTableTriggerDesignerViewController>(Denied.localizedDescription());
    expectNotice<MSSQLTableDetailsViewController>(Denied.localizedDescription());
}

TEST_F(DesignerOfFake, SaysWhenATriggersDefinitionCannotBeRead)
{
    m_server->answer("ColumnsForTable", OneColumn);
    m_server->answer("List_TriggersForTableWithDetails", {{"TR", "AFTER", "INSERT", nullptr, 1}});
    open();
    auto *const triggers = m_designer->findChild<MSSQLTableTriggerDesignerViewController *>();
    ASSERT_EQ(triggers->list()->topLevelItemCount(), 1);
    triggers->list()->setCurrentItem(triggers->list()->topLevelItem(0));
    triggers->openSelected();
    ASSERT_EQ(m_alerts.messages.size(), 1u);
    EXPECT_EQ(m_alerts.messages[0],
              (QStringList{QStringLiteral("The definition of the trigger 'TR' cannot be read."),
                           QStringLiteral("It is encrypted, or you have no right to see it.")}));
    EXPECT_TRUE(m_workspace.queries.empty());
}

TEST_F(DesignerOfFake, KeepsAColumnThatAViewIsBoundTo)
{
    KNUserDefaults::standardUserDefaults()->setObject(MSSQLCorrectedStatements::Key, true);
    FakeCatalog::Rows columns = OneColumn + OneColumn;
    columns[1][0] = "b";
    m_server->answer("ColumnsForTable", columns);
    const QString refusal =
        QStringLiteral("ALTER TABLE DROP COLUMN b failed because one or more objects access this column.");
    m_server->fail("ALTER TABLE dbo.T DROP COLUMN b", KNError(QStringLiteral("SQLClient"), 4922, refusal));
    open();
    auto *const tab = m_designer->findChild<MSSQLTableColumnDesignerViewController *>();
    tab->grid()->setCurrentIndex(tab->grid()->model()->index(1, MSSQLColumnGridModel::Field));
    tab->handleDeleteColumn();
    ASSERT_EQ(m_alerts.pending.size(), 1u);
    m_alerts.pending[0](1);
    ASSERT_TRUE(waitFor([&] { return !m_alerts.messages.empty(); }));
    EXPECT_EQ(m_alerts.messages[0][1],
              KNFormat("Error: %@.\r\nQuery was: ALTER TABLE dbo.T DROP COLUMN b", refusal));
    EXPECT_TRUE(waitFor([&] { return !tab->isLoading(); }));
    EXPECT_EQ(tab->grid()->model()->rowCount(), 2);
    KNUserDefaults::standardUserDefaults()->removeObject(MSSQLCorrectedStatements::Key);
}

TEST_F(DesignerOfFake, OffersNoTableWithoutNameToAForeignKey)
{
    m_server->answer("ColumnsForTable", OneColumn);
    m_server->answer("DatabaseTree_ListTables",
                     {{1, "dbo", "T"}, {2, "dbo", nullptr}, {3, "dbo", ""}, {4, nullptr, "U"}});
    open();
    m_designer->findChild<MSSQLTableListForeignKeysViewController *>()->addNewKey();
    auto *const key = m_designer->findChild<MSSQLEditForeignKeyWindowController *>();
    ASSERT_TRUE(waitFor([&] { return key->isLoaded(); }));
    auto *const tables = key->findChild<QComboBox *>();
    QStringList names;
    for (int i = 0; i < tables->count(); ++i)
        names.append(tables->itemText(i));
    EXPECT_EQ(names, (QStringList{QStringLiteral("dbo.T"), QStringLiteral(".U")}));
}

TEST_F(DesignerOfFake, ShowsWhyTheTablesForAForeignKeyCannotBeRead)
{
    m_server->answer("ColumnsForTable", OneColumn);
    m_server->fail("DatabaseTree_ListTables", Denied);
    open();
    m_designer->findChild<MSSQLTableListForeignKeysViewController *>()->addNewKey();
    ASSERT_TRUE(waitFor([&] { return !m_alerts.errors.empty(); }));
    EXPECT_EQ(m_alerts.errors[0].localizedDescription(), Denied.localizedDescription());
}

namespace {

struct PublicSettings : DesignerTest
{
    using DesignerTest::settingsFor;
};

/// The dialog's text and list for a table on a server with this banner.
struct Renaming
{
    explicit Renaming(const std::shared_ptr<FakeCatalog::Server> &server)
        : dialog(new MSSQLRenameTableWindowController({QStringLiteral("dbo"), QStringLiteral("T")},
                                                      server->settings(), &window))
    {
        EXPECT_TRUE(WindowTesting::settle());
    }
    ~Renaming() { VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients(); }

    bool says(const char *text) const
    {
        for (const QLabel *label : dialog->findChildren<QLabel *>()) {
            if (label->text() == QString::fromUtf8(text))
                return true;
        }
        return false;
    }
    QWidget window;
    MSSQLRenameTableWindowController *dialog;
};

} // namespace

TEST(RenamingATable, ListsTheObjectsThatNameItOnEachVersion)
{
    for (const auto &[banner, source] : std::initializer_list<std::pair<const char *, const char *>>{
             {"Microsoft SQL Server 2000 - 8.00.2039", "dbo.sysdepends"},
             {"Microsoft SQL Server 2022", "sys.sql_expression_dependencies"},
             {"Microsoft SQL Azure (RTM) - 12.0.2000.8", "sys.sql_expression_dependencies"}}) {
        const auto server = FakeCatalog::Server::create(banner);
        for (const char *title : {"List_DependentsOfTable", "List_DependentsOfTable_2000"})
            server->answer(title, {{"dbo", "V"}, {"sales", "P"}});
        const Renaming renaming(server);
        EXPECT_EQ(renaming.dialog->findChild<QPlainTextEdit *>()->toPlainText(),
                  QStringLiteral("dbo.V\nsales.P"))
            << banner;
        EXPECT_TRUE(
            renaming.says("These objects name the table. They are not changed, and may fail afterwards:"));
        const QStringList asked =
            server->texts("List_DependentsOfTable") + server->texts("List_DependentsOfTable_2000");
        ASSERT_EQ(asked.size(), 1) << banner;
        EXPECT_TRUE(asked[0].contains(QString::fromUtf8(source))) << banner;
    }
}

TEST(RenamingATable, ListsTheObjectsOfADatabaseThatNameIt)
{
    for (const char *edition : {"2000", "2008", "2022", "azure"}) {
        const SampleServerFixture server({{"--edition", edition}, {}});
        const auto settings = PublicSettings::settingsFor(server);
        settings->setDatabase(QStringLiteral("shop"));
        QWidget window;
        const auto *const dialog = new MSSQLRenameTableWindowController(
            {QStringLiteral("dbo"), QStringLiteral("Orders")}, settings, &window);
        EXPECT_TRUE(WindowTesting::settle());
        // A trigger of the table follows the rename: it is not among them.
        EXPECT_EQ(dialog->findChild<QPlainTextEdit *>()->toPlainText(),
                  QStringLiteral("sales.CustomerOrders\nsales.OrdersOf\nsales.PlaceOrder"))
            << edition;
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }
}

TEST(RenamingATable, SaysWhenNothingNamesItOrTheListCannotBeRead)
{
    const auto server = FakeCatalog::Server::create();
    EXPECT_TRUE(Renaming(server).says("No view, procedure, function or trigger names this table."));
    server->fail("List_DependentsOfTable", Denied);
    EXPECT_TRUE(Renaming(server).says("The objects that name this table could not be read."));
}
