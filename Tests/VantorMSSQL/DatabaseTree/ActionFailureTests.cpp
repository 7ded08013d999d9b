#include "VantorMSSQL/DatabaseTree/ActionFailureTest.h"

#include "Support/HostileServerBytes.h"
#include "UI/RowEditing/KNEditRowModel.h"
#include "UI/RowEditing/KNEditRowWindowController.h"
#include "UI/Scripts/KNGenerateScriptsWindowController.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"
#include "UI/TableDesigner/MSSQLRenameTableWindowController.h"

#include <QComboBox>
#include <QFile>

/// The actions of the tree that run statements, with statements that fail and with confirmations that the
/// user cancels.
namespace ActionFailureTests {

namespace {

using WindowTesting::waitFor;

Steps renameTable(ActionFailure &test)
{
    test.perform("renameTable:", test.select({"library", "Tables", "Fails"}));
    auto &rename = test.dialog<MSSQLRenameTableWindowController>();
    rename.findChild<QLineEdit *>()->setText(QStringLiteral("Renamed"));
    return test.alerted([&rename] { ActionFailure::defaultButton(rename).click(); },
                        [&rename] { rename.reject(); });
}

Steps createTable(ActionFailure &test)
{
    test.select({"library", "Tables"});
    test.perform("addNewTable:", QStringLiteral(""));
    auto &create = test.dialog<MSSQLCreateTableWindowController>();
    auto *const schema = create.findChild<QComboBox *>();
    EXPECT_TRUE(waitFor([&] { return schema->findText(QStringLiteral("dbo")) >= 0; }));
    create.findChild<QLineEdit *>()->setText(QStringLiteral("Made"));
    return test.alertedIn(
        create, [&create] { ActionFailure::defaultButton(create).click(); },
        [&test] { return test.isSheetOver(); });
}

Steps insertRow(ActionFailure &test)
{
    test.perform("displayInsertDialog:", test.select({"library", "Tables", "Fails"}));
    auto &form = test.dialog<KNEditRowWindowController>();
    EXPECT_TRUE(waitFor([&] { return form.model()->rowCount() == 3; }));
    form.model()->setData(form.model()->index(0, KNEditRowModel::Value), QStringLiteral("5"));
    return test.alertedIn(
        form, [&form] { form.apply(); }, [&form] { return !form.model()->isLocked(); });
}

Steps startJob(ActionFailure &test)
{
    const TreeTesting::Ptr job = test.select({"SQL Server Agent", "Jobs", "Fails"});
    return test.alerted([&test, job] { test.perform("startSQLAgentJob:", job); }, {});
}

Steps dropJob(ActionFailure &test)
{
    test.m_alerts.pending.clear();
    test.perform("confirmDropSQLAgentJob:", test.select({"SQL Server Agent", "Jobs", "Fails"}));
    return test.alerted([&test] { test.m_alerts.pending.back()(1); },
                        [&test] { test.m_alerts.pending.back()(0); });
}

Steps exportForMySQL(ActionFailure &test)
{
    test.m_alerts.pending.clear();
    test.select({"library"});
    test.perform("exportDatabaseAsMySQL:", QStringLiteral(""));
    return test.alerted([&test] { test.m_alerts.pending.back()(0); },
                        [&test] { test.m_alerts.pending.back()(2); });
}

Steps exportAsCsv(ActionFailure &test)
{
    test.select({"library", "Tables", "Fails"});
    return test.alerted([&test] { test.perform("exportTableAsCSV:", QStringLiteral("dbo.Fails")); },
                        [&test] {
                            test.m_panels.answer = {};
                            test.perform("exportTableAsCSV:", QStringLiteral("dbo.Fails"));
                        });
}

Steps generateScripts(ActionFailure &test)
{
    test.perform("generateScripts:", test.select({"library", "Tables", "Fails"}));
    auto &window = test.dialog<KNGenerateScriptsWindowController>();
    EXPECT_TRUE(waitFor([&] { return window.model()->checkedCount() == 1; }));
    return test.alertedIn(
        window, [&window] { window.generate(); }, [&test] { return test.isSheetOver(); });
}

const Action Actions[] = {
    {"DropTable",
     [](ActionFailure &test) {
         return test.dropped("confirmDropTable:", {"library", "Tables", "Fails"});
     },
     u"DROP TABLE",
     {3701, 11,
      "Cannot drop the table 'dbo.Fails', because it does not exist or you do not have permission."},
     "DROP TABLE dbo.Fails",
     "Cannot drop the table"},
    {"DropView",
     [](ActionFailure &test) {
         return test.dropped("confirmDropView:", {"library", "Views", "FailsView"});
     },
     u"DROP VIEW",
     {3701, 11,
      "Cannot drop the view 'dbo.FailsView', because it does not exist or you do not have permission."},
     "DROP VIEW dbo.FailsView",
     "Cannot drop the view"},
    {"DropColumn",
     [](ActionFailure &test) {
         return test.dropped("confirmDropColumn:", {"library", "Tables", "Fails", "Columns", "note"});
     },
     u"DROP COLUMN",
     {1088, 16,
      "Cannot find the object \"dbo.Fails\" because it does not exist or you do not have permissions."},
     "ALTER TABLE dbo.Fails DROP COLUMN note",
     "does not exist"},
    {"DropIndex",
     [](ActionFailure &test) {
         return test.dropped("confirmDropIndex:", {"library", "Tables", "Fails", "Indexes", "IX_Fails"});
     },
     u"DROP INDEX",
     {3701, 11,
      "Cannot drop the index 'dbo.Fails.IX_Fails', because it does not exist or you do not have permission."},
     "DROP INDEX dbo.Fails.IX_Fails",
     "Cannot drop the index"},
    {"DropProcedure",
     [](ActionFailure &test) {
         return test.dropped("confirmDropProcedure:",
                             {"library", "Programmability", "Stored Procedures", "dbo.FailsProcedure"});
     },
     u"DROP PROCEDURE",
     {3701, 11,
      "Cannot drop the procedure 'dbo.FailsProcedure', because it does not exist or you do not have "
      "permission."},
     "DROP PROCEDURE dbo.FailsProcedure",
     "Cannot drop the procedure"},
    {"DropFunction",
     [](ActionFailure &test) {
         return test.dropped("confirmDropFunction:", {"library", "Programmability", "Functions",
                                                      "Scalar-valued Functions", "dbo.FailsFunction"});
     },
     u"DROP FUNCTION",
     {3701, 11,
      "Cannot drop the function 'dbo.FailsFunction', because it does not exist or you do not have "
      "permission."},
     "DROP FUNCTION dbo.FailsFunction",
     "Cannot drop the function"},
    {"RenameColumn",
     [](ActionFailure &test) {
         return test.renamed("renameColumn:", {"library", "Tables", "Fails", "Columns", "note"});
     },
     u"sp_rename",
     {15247, 16, "User does not have permission to perform this action."},
     "ALTER TABLE dbo.Fails DROP COLUMN note",
     "@objname"},
    {"RenameIndex",
     [](ActionFailure &test) {
         return test.renamed("renameIndex:", {"library", "Tables", "Fails", "Indexes", "IX_Fails"});
     },
     u"sp_rename",
     {15247, 16, "User does not have permission to perform this action."},
     "DROP INDEX dbo.Fails.IX_Fails",
     "@objname"},
    {"RenameKey",
     [](ActionFailure &test) {
         return test.renamed("renameKey:", {"library", "Tables", "Fails", "Keys", "PK_Fails"});
     },
     u"sp_rename",
     {15247, 16, "User does not have permission to perform this action."},
     "ALTER TABLE dbo.Fails DROP CONSTRAINT PK_Fails",
     "No item by the name of"},
    {"RenameTable",
     renameTable,
     u"sp_rename",
     {15247, 16, "User does not have permission to perform this action."},
     "DROP TABLE dbo.Fails",
     "No item by the name of"},
    {"CreateTable",
     createTable,
     u"CREATE TABLE",
     {262, 14, "CREATE TABLE permission denied in database 'library'."},
     "CREATE TABLE dbo.Made (a int)",
     "There is already an object named 'Made'"},
    {"InsertRow",
     insertRow,
     u"INSERT INTO",
     {229, 14, "The INSERT permission was denied on the object 'Fails', database 'library', schema 'dbo'."},
     "DROP TABLE dbo.Fails",
     "Invalid object name"},
    {"StartJob",
     startJob,
     u"sp_start_job",
     {229, 14,
      "The EXECUTE permission was denied on the object 'sp_start_job', database 'msdb', schema 'dbo'."},
     "EXEC msdb.dbo.sp_delete_job @job_name = N'Fails'",
     "does not exist"},
    {"DropJob",
     dropJob,
     u"sp_delete_job",
     {229, 14,
      "The EXECUTE permission was denied on the object 'sp_delete_job', database 'msdb', schema 'dbo'."},
     "EXEC msdb.dbo.sp_delete_job @job_name = N'Fails'",
     "does not exist"},
    {"ExportForMySQL",
     exportForMySQL,
     u"Fails",
     {229, 14, "The SELECT permission was denied on the object 'Fails', database 'library', schema 'dbo'."},
     nullptr,
     nullptr},
    {"ExportAsCsv",
     exportAsCsv,
     u"SELECT * FROM dbo.Fails",
     {229, 14, "The SELECT permission was denied on the object 'Fails', database 'library', schema 'dbo'."},
     "DROP TABLE dbo.Fails",
     "Invalid object name"},
    {"GenerateScripts",
     generateScripts,
     u"Fails",
     {229, 14,
      "The SELECT permission was denied on the object 'columns', database 'mssqlsystemresource', schema "
      "'sys'."},
     nullptr,
     nullptr},
};

/// The user learns the reason, and neither the tree nor the server has changed.
void expectFailure(ActionFailure &test, Steps (*begin)(ActionFailure &), const std::function<void()> &spoil,
                   const char *reason)
{
    QFile old(test.file());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    const Steps steps = begin(test);
    spoil();
    const QStringList tree = test.treeState();
    const QStringList server = test.serverState();
    const TreeTesting::Ptr selected = test.m_workspace.selected;
    steps.accept();
    ASSERT_TRUE(waitFor(steps.hasEnded));
    EXPECT_TRUE(waitFor([&] { return !steps.reason().isEmpty(); }));
    EXPECT_TRUE(steps.reason().contains(QString::fromUtf8(reason))) << steps.reason().toStdString();
    EXPECT_TRUE(steps.isUsable());
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(test.treeState(), tree);
    EXPECT_EQ(test.serverState(), server);
    EXPECT_EQ(test.m_workspace.selected, selected);
    EXPECT_TRUE(test.m_workspace.refreshed.empty());
    EXPECT_TRUE(test.m_workspace.notifications.empty());
    EXPECT_TRUE(test.m_workspace.opened.isEmpty());
    EXPECT_EQ(test.m_notifications, 0);
    EXPECT_TRUE(test.m_fileManager.files.isEmpty());
    ASSERT_TRUE(old.open(QIODevice::ReadOnly));
    EXPECT_EQ(old.readAll(), "old");
}

/// The action runs, and changes the server or writes its file.
void expectSuccess(ActionFailure &test, Steps (*begin)(ActionFailure &))
{
    test.m_alerts.errors.clear();
    test.m_sheets.all.clear();
    const Steps steps = begin(test);
    const QStringList server = test.serverState();
    steps.accept();
    ASSERT_TRUE(waitFor(steps.hasEnded));
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(steps.reason(), QString());
    EXPECT_TRUE(test.serverState() != server || !test.m_fileManager.files.isEmpty());
}

HostileServerBytes::Bytes errorAnswer(const Refusal &refusal)
{
    using namespace HostileServerBytes;
    return packet(joined({message(refusal.number, static_cast<std::uint8_t>(refusal.severity), refusal.text),
                          done(DoneError)}));
}

/// Drops run in a transaction of their own.
class DropFailure : public ActionFailure
{
};

class ActionOnGoneObject : public ActionFailure
{
};

class CancelledAction : public ActionFailure
{
};

auto actionsWhere(bool (*condition)(const Action &action))
{
    std::vector<Action> found;
    std::copy_if(std::begin(Actions), std::end(Actions), std::back_inserter(found), condition);
    return testing::ValuesIn(found);
}

std::string nameOf(const testing::TestParamInfo<Action> &action)
{
    return action.param.name;
}

} // namespace

TEST_P(ActionFailure, WithoutPermissionOrBehindALockSaysWhyAndCanBeRepeated)
{
    const Action &action = GetParam();
    const Refusal timeOut{1222, 16, "Lock request time out period exceeded."};
    for (const Refusal &refusal : {action.refusal, timeOut}) {
        SCOPED_TRACE(refusal.text);
        m_alerts.errors.clear();
        m_sheets.all.clear();
        const auto before = relay.interceptedBatches();
        expectFailure(
            *this, action.begin, [&] { relay.interceptBatches(action.statement, errorAnswer(refusal)); },
            refusal.text);
        EXPECT_GT(relay.interceptedBatches(), before);
        relay.interceptBatches({}, {});
        closeDialogs();
    }
    expectSuccess(*this, action.begin);
}

TEST_P(ActionFailure, OfALostConnectionSaysWhyAndCanBeRepeated)
{
    expectFailure(
        *this, GetParam().begin, [&] { relay.interceptBatches(GetParam().statement, {}); },
        "The connection to the server was lost");
    EXPECT_GT(relay.interceptedBatches(), 0u);
    relay.interceptBatches({}, {});
    closeDialogs();
    expectSuccess(*this, GetParam().begin);
}

TEST_P(DropFailure, OfAConnectionLostBeforeTheCommitChangesNothing)
{
    expectFailure(
        *this, GetParam().begin, [&] { relay.interceptBatches(u"COMMIT TRANSACTION", {}); },
        "Check on the server what was changed.");
    EXPECT_EQ(relay.interceptedBatches(), 1u);
}

TEST_P(ActionOnGoneObject, SaysWhy)
{
    expectFailure(
        *this, GetParam().begin, [&] { atServer(GetParam().removal); }, GetParam().goneReason);
}

TEST_P(CancelledAction, ChangesNothing)
{
    const Steps steps = GetParam().begin(*this);
    const QStringList tree = treeState();
    const QStringList server = serverState();
    const TreeTesting::Ptr selected = m_workspace.selected;
    steps.cancel();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(treeState(), tree);
    EXPECT_EQ(serverState(), server);
    EXPECT_EQ(m_workspace.selected, selected);
    EXPECT_TRUE(m_sheets.all.empty());
    EXPECT_TRUE(m_alerts.errors.empty());
    EXPECT_TRUE(m_workspace.refreshed.empty());
    EXPECT_EQ(m_notifications, 0);
    EXPECT_FALSE(QFile::exists(file()));
    EXPECT_EQ(m_workspace.window.findChild<QDialog *>(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Action, ActionFailure, testing::ValuesIn(Actions), nameOf);
INSTANTIATE_TEST_SUITE_P(Action, DropFailure, actionsWhere([](const Action &action) {
                             return std::u16string_view(action.statement).starts_with(u"DROP");
                         }),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Action, ActionOnGoneObject,
                         actionsWhere([](const Action &action) { return action.removal != nullptr; }),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Action, CancelledAction,
                         actionsWhere([](const Action &action) { return action.begin != startJob; }), nameOf);

} // namespace ActionFailureTests
