#include "Foundation/KNLogHelper.h"
#include "Support/FakeCatalog.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingWorkspace.h"
#include "Support/TestText.h"
#include "Support/WindowTesting.h"
#include "TableDesign/MSSQLColumnEdit.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>

namespace TableDesignerLogTests {

namespace {

/// The log while the designer works on s.T, over a server that exists in the test only.
class DesignerLog : public testing::Test
{
protected:
    DesignerLog()
    {
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) {
            const std::lock_guard lock(m_mutex);
            m_records.append(record);
        });
    }
    ~DesignerLog() override { KNLogHelper::sharedInstance()->setObserver({}); }

    /// Whether a record with all these texts is written within the time of a test.
    bool logs(const QStringList &texts)
    {
        return WindowTesting::waitFor([&] {
            const std::lock_guard lock(m_mutex);
            return std::any_of(m_records.begin(), m_records.end(), [&](const QString &record) {
                return std::all_of(texts.begin(), texts.end(),
                                   [&](const QString &text) { return record.contains(text); });
            });
        });
    }
    KNStatementPair script(MSSQLColumnEdit::Cell cell, const QVariant &value)
    {
        MSSQLColumnRecord column;
        column.columnName = q("a");
        column.typeName = q("int");
        column.isNullable = false;
        KNError error;
        const KNStatementPair pair =
            MSSQLColumnEdit(column, cell, value)
                .script({q("s"), q("T"), q("s")}, {column}, *m_server->settings(), &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return pair;
    }

    const std::shared_ptr<FakeCatalog::Server> m_server = FakeCatalog::Server::create();
    std::mutex m_mutex; ///< guards m_records
    QStringList m_records;
};

} // namespace

TEST_F(DesignerLog, HoldsTheScriptsOfDefaultsAndKeys)
{
    ASSERT_FALSE(script(MSSQLColumnEdit::Default, q("42")).exact.isNull());
    EXPECT_TRUE(logs({q("Alter table query is: "), q("42")}));
    ASSERT_FALSE(script(MSSQLColumnEdit::Primary, true).exact.isNull());
    EXPECT_TRUE(logs({q("Resulting query is: ALTER TABLE T ADD PRIMARY KEY(a);")}));
}

TEST_F(DesignerLog, HoldsAnIdentityThatCannotBeSet)
{
    MSSQLColumnRecord column;
    column.columnName = q("a");
    column.typeName = q("nvarchar");
    EXPECT_FALSE(MSSQLColumnEdit(column, MSSQLColumnEdit::AutoIncrement, true).refusal().isNull());
    EXPECT_TRUE(logs({q("Unable to set column a to value true")}));
}

TEST_F(DesignerLog, NamesTheTableOfAFailedLoad)
{
    const KNError refused(q("test"), 229, q("Permission denied."));
    for (const char *const title :
         {"ColumnsForTable", "List_ForeignKeysForTable", "List_TriggersForTableWithDetails"})
        m_server->fail(title, refused);
    RecordingAlerts::install();
    RecordingWorkspace workspace{*m_server->settings()};
    workspace.window.show();
    MSSQLTableDesignerViewController designer(q("s"), q("T"), m_server->settings(), workspace);
    designer.show();
    EXPECT_TRUE(logs({q("mssql.tabledesigner.loadTable"), q(" tableName: T"), q(" Query: ")}));
    EXPECT_TRUE(logs(
        {q("mssql.tabledesigner.loadForeignKeys"), q(" tableName: T"), q(" schemaName: s"), q(" Query: ")}));
    EXPECT_TRUE(logs({q("mssql.tabledesigner.loadTriggers"), q(" tableName: T"), q(" Query: ")}));
    EXPECT_TRUE(WindowTesting::settle());
}

} // namespace TableDesignerLogTests
