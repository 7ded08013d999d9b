#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntryAgentJob.h"
#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabase.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntrySectionTables.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableIndex.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableKey.h"
#include "UI/DatabaseTree/Programmability/Functions/MSSQLDatabaseTreeEntryFunction.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"
#include "VantorMSSQL/DatabaseTree/ActionTest.h"

#include <QDialog>

#include <typeinfo>

namespace ActionKindTests {

namespace {

using Entry = KNDatabaseTreeEntry;

template <typename Kind>
bool is(const Entry &entry)
{
    return dynamic_cast<const Kind *>(&entry) != nullptr;
}

bool isView(const Entry &entry)
{
    const auto *const table = dynamic_cast<const MSSQLDatabaseTreeEntryDatabaseTable *>(&entry);
    return table && table->isView();
}

bool isTable(const Entry &entry)
{
    return is<MSSQLDatabaseTreeEntryDatabaseTable>(entry) && !isView(entry);
}

bool isColumnOfTable(const Entry &entry)
{
    const auto *const column = dynamic_cast<const MSSQLDatabaseTreeEntryDatabaseTableColumn *>(&entry);
    return column && !column->belongsToView();
}

bool hasScripts(const Entry &entry)
{
    return is<MSSQLDatabaseTreeEntryDatabase>(entry) || is<MSSQLDatabaseTreeEntrySectionTables>(entry) ||
           is<MSSQLDatabaseTreeEntryDatabaseTable>(entry) || is<MSSQLDatabaseTreeEntryFunction>(entry) ||
           is<MSSQLDatabaseTreeEntryStoredProcedure>(entry);
}

/// An action and the entries that it is for.
struct Action
{
    const char *name;
    bool (*isFor)(const Entry &entry);

    friend void PrintTo(const Action &action, std::ostream *out) { *out << action.name; }
};

const Action Actions[] = {
    {"alterTable:", isTable},
    {"renameTable:", isTable},
    {"displayInsertDialog:", isTable},
    {"confirmDropTable:", isTable},
    {"confirmDropView:", isView},
    {"confirmDropColumn:", is<MSSQLDatabaseTreeEntryDatabaseTableColumn>},
    {"confirmDropProcedure:", is<MSSQLDatabaseTreeEntryStoredProcedure>},
    {"confirmDropFunction:", is<MSSQLDatabaseTreeEntryFunction>},
    {"confirmDropIndex:", is<MSSQLDatabaseTreeEntryTableIndex>},
    {"renameColumn:", isColumnOfTable},
    {"renameIndex:", is<MSSQLDatabaseTreeEntryTableIndex>},
    {"renameKey:", is<MSSQLDatabaseTreeEntryTableKey>},
    {"executeStoredProcedure:", is<MSSQLDatabaseTreeEntryStoredProcedure>},
    {"exportDatabaseAsMSSQL:", is<MSSQLDatabaseTreeEntryDatabase>},
    {"exportDatabaseAsMySQL:", is<MSSQLDatabaseTreeEntryDatabase>},
    {"generateScripts:", hasScripts},
    {"startSQLAgentJob:", is<MSSQLDatabaseTreeEntryAgentJob>},
    {"stopSQLAgentJob:", is<MSSQLDatabaseTreeEntryAgentJob>},
    {"confirmDropSQLAgentJob:", is<MSSQLDatabaseTreeEntryAgentJob>},
    {"connectToFederatedMember:", is<MSSQLDatabaseTreeEntryFederation>},
    {"showActivity:", is<MSSQLDatabaseTreeEntryServer>},
};

/// One entry of each kind in the tree of the sample server.
class ActionKind : public ActionTest
{
protected:
    ActionKind()
        : ActionTest("shop")
    {
        KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLAgentEnabled"), true);
        collect(m_root);
    }

    void collect(const TreeTesting::Ptr &entry)
    {
        const KNDatabaseTreeEntry &object = *entry;
        const QString kind = QString::fromLatin1(typeid(object).name()) + QString::number(isView(*entry)) +
                             QString::number(isColumnOfTable(*entry));
        const bool isNew = !m_kinds.contains(kind);
        if (isNew)
            m_kinds.insert(kind, entry);
        // The tables of the sample are many and alike; views have columns of another kind.
        const bool hasNewBelow =
            isNew || !is<MSSQLDatabaseTreeEntryDatabaseTable>(*entry) || m_kinds.size() < 20;
        if (!entry->canHaveChildren() || !hasNewBelow)
            return;
        TreeTesting::load(entry);
        const auto children = entry->childEntries();
        for (const TreeTesting::Ptr &child : *children)
            collect(child);
    }
    void expectIgnored(const Action &action);

    QMap<QString, TreeTesting::Ptr> m_kinds;
};

void ActionKind::expectIgnored(const Action &action)
{
    for (const TreeTesting::Ptr &entry : std::as_const(m_kinds)) {
        if (action.isFor(*entry))
            continue;
        perform(action.name, entry); // of the menu item
        m_workspace.selected = entry;
        perform(action.name, QStringLiteral("")); // of the selection
        EXPECT_EQ(m_workspace.selected, entry);
    }
    m_workspace.selected.reset();
    perform(action.name, {});
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_TRUE(m_alerts.questions.empty());
    EXPECT_TRUE(m_alerts.errors.empty());
    EXPECT_TRUE(m_sheets.all.empty());
    EXPECT_TRUE(m_panels.requests.empty());
    EXPECT_TRUE(m_workspace.queries.empty());
    EXPECT_TRUE(m_workspace.opened.isEmpty());
    EXPECT_TRUE(m_workspace.connections.empty());
    EXPECT_TRUE(m_workspace.refreshed.empty());
    EXPECT_FALSE(m_previews.last);
    EXPECT_EQ(m_workspace.window.findChild<QDialog *>(), nullptr);
}

} // namespace

TEST_F(ActionKind, IgnoresEntriesOfOtherKinds)
{
    EXPECT_GT(m_kinds.size(), 20);
    for (const Action &action : Actions) {
        SCOPED_TRACE(action.name);
        expectIgnored(action);
    }
}

} // namespace ActionKindTests
