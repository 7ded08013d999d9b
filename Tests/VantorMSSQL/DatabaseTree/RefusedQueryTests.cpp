#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

#include <QSet>

using namespace TreeTesting;

namespace {

class UnavailableDatabase : public TreeTest
{
};

/// Every branch of the tree by its path, with what it shows below it; an error's text stands in braces.
using Branches = QMap<QString, QStringList>;

/// A server that refuses one catalog query.
class RefusedQuery : public TreeTest, public testing::WithParamInterface<const char *>
{
protected:
    RefusedQuery()
    {
        KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLAgentEnabled"), true);
        answerEverything(*server);
    }

    static void answerEverything(FakeCatalog::Server &answering)
    {
        answering.answer("General_ListDatabases", {{"shop", 6}});
        answering.answer("IsSQLServerAgentAvailable", {{1}});
        answering.answer("List_AgentJobs", {{"1", "nightly"}});
        answering.answer("DatabaseTree_ListTables", {{1, "dbo", "Orders"}});
        answering.answer("ColumnsForTable", {{"Id", "int", nullptr, nullptr, nullptr, 0, 1, nullptr, 0}});
        answering.answer("List_KeysForTable", {{"PK_Orders", 1}});
        answering.answer("List_IndexesForTable", {{"PK_Orders"}});
        answering.answer("List_TriggersForTableWithDetails",
                         {{"tr", "AFTER", "INSERT", "CREATE TRIGGER tr ON Orders", 1}});
        answering.answer("List_ViewsInDatabase_NonSystem", {{1, "dbo", "v"}});
        answering.answer("SELECT SCHEMA_NAME()", {{"dbo"}});
        answering.answer("List_IndexesForView", {{"CX"}});
        answering.answer("List_StoredProceduresInDatabase_NonSystem", {{"dbo", "p"}});
        answering.answer("List_ParametersForStoredProcedure", {{"@id", "int"}});
        answering.answer("List_FunctionsByTypeInDatabase_NonSystem", {{"dbo", "fn"}});
        answering.answer("List_UserTypesByTypeInDatabase_NonSystem", {{"dbo", "t"}});
        answering.answer("List_SearchableDatabaseEntries", {{"shop", "dbo", "Orders", "TABLE"}});
    }

    /// Loads the whole tree of a server.
    static Branches branchesOf(FakeCatalog::Server &asked)
    {
        const auto root = MSSQLDatabaseTreeEntryServer::create();
        root->setDatabaseConnectionDetails(asked.settings().get());
        Branches branches;
        collect(root, QString(), branches);
        return branches;
    }

    static void collect(const Ptr &entry, const QString &path, Branches &branches)
    {
        if (!entry->canHaveChildren())
            return;
        load(entry);
        const auto children = entry->childEntries();
        QStringList &names = branches[path];
        for (const Ptr &child : children ? *children : KNDatabaseTreeEntry::List()) {
            const auto *error = dynamic_cast<const KNDatabaseTreeErrorEntry *>(child.get());
            names.append(error ? QStringLiteral("{%1}").arg(error->error().localizedDescription())
                               : child->displayName());
        }
        for (const Ptr &child : children ? *children : KNDatabaseTreeEntry::List())
            collect(child, path + QLatin1Char('/') + child->displayName(), branches);
    }
};

/// The branches that show an error when this query is refused: nothing else of the tree may be missing.
QSet<QString> branchesThatNeed(const QString &title)
{
    const QMap<QString, QStringList> needed{
        {QStringLiteral("General_ListDatabases"), {QString()}},
        {QStringLiteral("List_AgentJobs"), {QStringLiteral("/SQL Server Agent/Jobs")}},
        {QStringLiteral("DatabaseTree_ListTables"), {QStringLiteral("/shop/Tables")}},
        {QStringLiteral("ColumnsForTable"),
         {QStringLiteral("/shop/Tables/Orders/Columns"), QStringLiteral("/shop/Views/v/Columns")}},
        {QStringLiteral("List_KeysForTable"),
         {QStringLiteral("/shop/Tables/Orders/Keys"), QStringLiteral("/shop/Views/v/Keys")}},
        {QStringLiteral("List_IndexesForTable"), {QStringLiteral("/shop/Tables/Orders/Indexes")}},
        {QStringLiteral("List_IndexesForView"), {QStringLiteral("/shop/Views/v/Indexes")}},
        {QStringLiteral("List_TriggersForTableWithDetails"),
         {QStringLiteral("/shop/Tables/Orders/Triggers"), QStringLiteral("/shop/Views/v/Triggers")}},
        {QStringLiteral("List_ViewsInDatabase_NonSystem"), {QStringLiteral("/shop/Views")}},
        {QStringLiteral("List_StoredProceduresInDatabase_NonSystem"),
         {QStringLiteral("/shop/Programmability/Stored Procedures")}},
        {QStringLiteral("List_ParametersForStoredProcedure"),
         {QStringLiteral("/shop/Programmability/Stored Procedures/dbo.p")}},
        {QStringLiteral("List_FunctionsByTypeInDatabase_NonSystem"),
         {QStringLiteral("/shop/Programmability/Functions/Table-valued Functions"),
          QStringLiteral("/shop/Programmability/Functions/Scalar-valued Functions")}},
        {QStringLiteral("List_UserTypesByTypeInDatabase_NonSystem"),
         {QStringLiteral("/shop/Programmability/Types/User-Defined Data Types"),
          QStringLiteral("/shop/Programmability/Types/User-Defined Table Types")}},
    };
    const QStringList paths = needed.value(title);
    return QSet<QString>(paths.cbegin(), paths.cend());
}

/// Branches that may look different without an error of their own.
bool mayDiffer(const QString &title, const QString &path)
{
    if (title == QLatin1String("IsSQLServerAgentAvailable"))
        return path.isEmpty();
    // Without the schema names are shown in full.
    if (title == QLatin1String("General_FindDefaultUserSchema"))
        return path == QLatin1String("/shop/Tables");
    return title == QLatin1String("SELECT SCHEMA_NAME()") && path == QLatin1String("/shop/Views");
}

} // namespace

TEST_P(RefusedQuery, CostsNoMoreThanTheBranchThatNeedsIt)
{
    const QString title = QString::fromLatin1(GetParam());
    const auto whole = FakeCatalog::Server::create();
    answerEverything(*whole);
    const Branches expected = branchesOf(*whole);
    ASSERT_GT(expected.size(), 15);

    const QString refusal = QStringLiteral("SELECT permission was denied on %1.").arg(title);
    server->fail(GetParam(), KNError(QStringLiteral("SQLClient"), 229, refusal));
    const Branches shown = branchesOf(*server);
    const QSet<QString> refused = branchesThatNeed(title);
    for (auto branch = shown.cbegin(); branch != shown.cend(); ++branch) {
        const QStringList error{QStringLiteral("{%1}").arg(refusal)};
        const bool isRefused = refused.contains(branch.key());
        if (!isRefused && (!expected.contains(branch.key()) || mayDiffer(title, branch.key())))
            continue;
        EXPECT_EQ(*branch, isRefused ? error : expected.value(branch.key())) << branch.key().toStdString();
    }
    for (auto branch = expected.cbegin(); branch != expected.cend(); ++branch) {
        const bool isBelowRefused = std::any_of(refused.begin(), refused.end(), [&](const QString &path) {
            return branch.key().startsWith(path + QLatin1Char('/')) || branch.key() == path;
        });
        const bool isRenamed =
            title.contains(QLatin1String("chema")) || title.contains(QLatin1String("SCHEMA_NAME"));
        const bool isAgent = title == QLatin1String("IsSQLServerAgentAvailable") &&
                             branch.key().startsWith(QLatin1String("/SQL Server Agent"));
        if (!isBelowRefused && !isRenamed && !isAgent) {
            EXPECT_TRUE(shown.contains(branch.key())) << branch.key().toStdString();
        }
    }
    EXPECT_TRUE(wasLogged(refusal.toUtf8().constData())) << "what was refused is in the log";
}

INSTANTIATE_TEST_SUITE_P(
    Title, RefusedQuery,
    testing::Values("DatabaseTree_ServerVersion", "General_ListDatabases", "General_FindDefaultUserSchema",
                    "IsSQLServerAgentAvailable", "List_AgentJobs", "DatabaseTree_ListTables",
                    "ColumnsForTable", "List_KeysForTable", "List_IndexesForTable", "List_IndexesForView",
                    "List_TriggersForTableWithDetails", "List_ViewsInDatabase_NonSystem",
                    "List_StoredProceduresInDatabase_NonSystem", "List_ParametersForStoredProcedure",
                    "List_FunctionsByTypeInDatabase_NonSystem", "List_UserTypesByTypeInDatabase_NonSystem",
                    "List_SearchableDatabaseEntries", "SELECT SCHEMA_NAME()"),
    [](const auto &title) {
        QString name = QString::fromLatin1(title.param);
        name.removeIf([](QChar c) { return !c.isLetterOrNumber(); });
        return name.toStdString();
    });

TEST_F(UnavailableDatabase, IsShownWithTheReason)
{
    server->answer("General_ListDatabases", {{"shop", 6, nullptr}, {"old", 7, "offline"}});
    const auto node = root();
    load(node);
    EXPECT_EQ(names(node), list({"shop", "old"}));
    EXPECT_TRUE(node->childEntries()->at(0)->details().isNull());
    EXPECT_EQ(node->childEntries()->at(1)->details(), QStringLiteral("offline"));
}
