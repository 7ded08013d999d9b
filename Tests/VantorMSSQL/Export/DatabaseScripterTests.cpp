#include "Export/MSSQLDatabaseScripter.h"

#include "Export/KNScriptExport.h"
#include "Export/MSSQLScriptConditions.h"
#include "Support/FakeCatalog.h"
#include "Support/TreeTesting.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

using BatchKind = MSSQLScriptBatches::Kind;

KNScriptObject scriptObject(const char *kind, const char *name)
{
    return {QString::fromLatin1(kind), QStringLiteral("dbo"), QString::fromUtf8(name),
            QByteArray(kind) == "USER_TABLE"};
}

QStringList namesOf(const QList<KNScriptObject> &objects)
{
    QStringList names;
    for (const KNScriptObject &object : objects)
        names.append(object.name);
    return names;
}

/// The names in the order of a script in which each "a>b" of the dependencies makes a need b.
QStringList orderOf(const QList<KNScriptObject> &objects, std::initializer_list<const char *> dependencies)
{
    QMultiHash<QString, QString> named;
    for (const char *const dependency : dependencies) {
        const QStringList pair = QString::fromLatin1(dependency).split(QLatin1Char('>'));
        named.insert(QStringLiteral("dbo.") + pair[0], QStringLiteral("dbo.") + pair[1]);
    }
    return namesOf(MSSQLScriptOrder(objects, named).objects());
}

} // namespace

TEST(ScriptOrder, PutsTypesTablesFunctionsViewsAndProceduresInThisOrder)
{
    EXPECT_EQ(orderOf({scriptObject("SQL_STORED_PROCEDURE", "p"), scriptObject("VIEW", "v"),
                       scriptObject("SQL_SCALAR_FUNCTION", "f"), scriptObject("USER_TABLE", "t"),
                       scriptObject("TYPE", "y")},
                      {}),
              TreeTesting::list({"y", "t", "f", "v", "p"}));
}

TEST(ScriptOrder, PutsAnObjectBehindThoseItNames)
{
    EXPECT_EQ(orderOf({scriptObject("USER_TABLE", "t"), scriptObject("SQL_SCALAR_FUNCTION", "f"),
                       scriptObject("VIEW", "a"), scriptObject("VIEW", "b")},
                      {"t>f", "a>b", "b>t", "a>missing"}),
              TreeTesting::list({"f", "t", "b", "a"}));
}

TEST(ScriptOrder, KeepsEveryObjectOfACycle)
{
    EXPECT_EQ(orderOf({scriptObject("VIEW", "a"), scriptObject("VIEW", "b"), scriptObject("VIEW", "c")},
                      {"a>b", "b>c", "c>a", "a>a"}),
              TreeTesting::list({"c", "b", "a"}));
}

TEST(ScriptOrder, TellsWhichObjectsOfACycleAreNamedBeforeTheyExist)
{
    const QList<KNScriptObject> objects = {scriptObject("VIEW", "a"), scriptObject("VIEW", "b"),
                                           scriptObject("VIEW", "c")};
    const MSSQLScriptOrder order(objects, {{QStringLiteral("dbo.a"), QStringLiteral("dbo.b")},
                                           {QStringLiteral("dbo.b"), QStringLiteral("dbo.a")},
                                           {QStringLiteral("dbo.c"), QStringLiteral("dbo.a")}});
    EXPECT_EQ(order.late(), QSet<QString>{QStringLiteral("dbo.a")});
}

TEST(ScriptOrder, PutsAFunctionBeforeTheTableWhoseCheckCallsItAndThatItReads)
{
    EXPECT_EQ(orderOf({scriptObject("USER_TABLE", "t"), scriptObject("SQL_SCALAR_FUNCTION", "f"),
                       scriptObject("VIEW", "v")},
                      {"t>f", "f>v", "v>t"}),
              TreeTesting::list({"f", "t", "v"}));
}

TEST(ScriptOrder, KeepsABoundFunctionBehindTheViewThatItReads)
{
    const QList<KNScriptObject> objects = {scriptObject("SQL_SCALAR_FUNCTION", "f"),
                                           scriptObject("VIEW", "v"), scriptObject("USER_TABLE", "t")};
    const MSSQLScriptOrder::Dependencies named = {{QStringLiteral("dbo.f"), QStringLiteral("dbo.v")},
                                                  {QStringLiteral("dbo.v"), QStringLiteral("dbo.t")},
                                                  {QStringLiteral("dbo.t"), QStringLiteral("dbo.f")}};
    const MSSQLScriptOrder::Reference fromTable(QStringLiteral("dbo.t"), QStringLiteral("dbo.f"));
    const MSSQLScriptOrder free(objects, named, {fromTable});
    EXPECT_EQ(namesOf(free.objects()), TreeTesting::list({"f", "t", "v"}));
    EXPECT_TRUE(free.unordered().isEmpty());
    const MSSQLScriptOrder::Reference toTable(QStringLiteral("dbo.v"), QStringLiteral("dbo.t"));
    const MSSQLScriptOrder bound(
        objects, named,
        {fromTable, toTable, MSSQLScriptOrder::Reference(QStringLiteral("dbo.f"), QStringLiteral("dbo.v"))});
    EXPECT_EQ(namesOf(bound.objects()), TreeTesting::list({"v", "f", "t"}));
    EXPECT_TRUE(bound.late().isEmpty());
    EXPECT_EQ(bound.unordered(), QList<MSSQLScriptOrder::Reference>{toTable});
}

TEST(ScriptOrder, HasNoDeepRecursion)
{
    QList<KNScriptObject> objects;
    QMultiHash<QString, QString> named;
    constexpr int Many = 50000;
    for (int i = 0; i < Many; ++i) {
        objects.append(scriptObject("VIEW", qPrintable(QString::number(i))));
        named.insert(QStringLiteral("dbo.%1").arg(i), QStringLiteral("dbo.%1").arg(i + 1));
    }
    const auto ordered = MSSQLScriptOrder(objects, named).objects();
    ASSERT_EQ(ordered.size(), Many);
    EXPECT_EQ(ordered.first().name, QString::number(Many - 1));
}

TEST(ScriptBatches, AreKnownByWhatTheyMake)
{
    const MSSQLScriptBatches batches(QStringLiteral(
        "SET ANSI_NULLS ON\r\nGO\r\nCREATE TABLE [a].[t] (\r\n\t[i] int, INDEX x (i)\r\n)\r\nGO\r\n"
        "/* c */ CREATE UNIQUE CLUSTERED INDEX [i]]x] ON [a].[t] ([i])\r\nGO\r\n"
        "ALTER TABLE [a].[t] WITH CHECK ADD CONSTRAINT [FK_t] FOREIGN KEY ([i]) REFERENCES [a].[u] "
        "([i])\r\nGO\r\n"
        "ALTER TABLE [a].[t] CHECK CONSTRAINT [FK_t]\r\nGO\r\n"
        "ALTER TABLE [a].[t] ADD CONSTRAINT [CK_t] CHECK ([i] > 0)\r\nGO\r\n"
        "SET QUOTED_IDENTIFIER ON\r\nGO\r\nCREATE TRIGGER [a].[tr] ON [a].[t] FOR INSERT AS SELECT "
        "1\r\nGO\r\n"
        "DISABLE TRIGGER [a].[tr] ON [a].[t]\r\nGO\r\n"
        "ALTER INDEX [i] ON [a].[t] DISABLE\r\nGO\r\n"
        "CREATE SELECTIVE XML INDEX [sx] ON [a].[t] ([x]) FOR ([p] = '/a')\r\nGO\r\n"));
    const auto &all = batches.all();
    ASSERT_EQ(all.size(), 9);
    const QList<std::pair<BatchKind, const char *>> expected = {
        {BatchKind::Object, ""},     {BatchKind::Index, "i]x"},  {BatchKind::ForeignKey, "FK_t"},
        {BatchKind::ForeignKey, ""}, {BatchKind::Check, "CK_t"}, {BatchKind::Trigger, "tr"},
        {BatchKind::Trigger, ""},    {BatchKind::Index, ""},     {BatchKind::Index, "sx"}};
    for (qsizetype i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(all[i].kind, expected[i].first) << i;
        EXPECT_EQ(all[i].name, QString::fromLatin1(expected[i].second)) << i;
    }
    EXPECT_TRUE(all[0].script().startsWith(QStringLiteral("SET ANSI_NULLS ON\r\nGO\r\nCREATE TABLE")));
    EXPECT_EQ(all[5].settings, QStringLiteral("SET QUOTED_IDENTIFIER ON\r\nGO\r\n"));
}

TEST(ScriptConditions, LookForTheObjectFirst)
{
    KNScriptOptions options;
    options.ifNotExists = true;
    const KNScriptObject table = scriptObject("USER_TABLE", "it's");
    const MSSQLScriptBatches batches(QStringLiteral("CREATE TABLE [dbo].[it's] (i int)\r\nGO\r\n"));
    EXPECT_EQ(MSSQLScriptConditions(options).script(table, batches.all()),
              QStringLiteral("IF OBJECT_ID(N'[dbo].[it''s]') IS NULL\r\n"
                             "\tEXEC(N'CREATE TABLE [dbo].[it''s] (i int)')\r\nGO\r\n"));
    const MSSQLScriptBatches several(QStringLiteral(
        "CREATE TABLE [dbo].[it's] (i int)\r\nGO\r\nALTER TABLE [dbo].[it's] WITH CHECK ADD CHECK "
        "([i]>(0))\r\nGO\r\nALTER TABLE [dbo].[it's] WITH CHECK ADD CONSTRAINT [CK] CHECK "
        "([i]<(9))\r\nGO\r\n"));
    EXPECT_EQ(MSSQLScriptConditions(options).script(table, several.all()),
              QStringLiteral("IF OBJECT_ID(N'[dbo].[it''s]') IS NULL\r\nBEGIN\r\n"
                             "\tEXEC(N'CREATE TABLE [dbo].[it''s] (i int)')\r\n"
                             "\tEXEC(N'ALTER TABLE [dbo].[it''s] WITH CHECK ADD CHECK ([i]>(0))')\r\n"
                             "END\r\nGO\r\nIF OBJECT_ID(N'[dbo].[CK]') IS NULL\r\n"
                             "\tEXEC(N'ALTER TABLE [dbo].[it''s] WITH CHECK ADD CONSTRAINT [CK] CHECK "
                             "([i]<(9))')\r\nGO\r\n"));
    const MSSQLScriptBatches continued(
        QStringLiteral("CREATE VIEW [dbo].[v] AS -- C:\\\r\nSELECT 1 i\r\nGO\r\n"));
    EXPECT_EQ(MSSQLScriptConditions(options).script(scriptObject("VIEW", "v"), continued.all()),
              QStringLiteral("IF OBJECT_ID(N'[dbo].[v]') IS NULL\r\n"
                             "\tEXEC(N'CREATE VIEW [dbo].[v] AS -- C:\\\\\r\n\r\nSELECT 1 i')\r\nGO\r\n"));
    EXPECT_EQ(
        MSSQLScriptConditions::drop(table),
        QStringLiteral("IF OBJECT_ID(N'[dbo].[it''s]') IS NOT NULL\r\n\tDROP TABLE [dbo].[it's]\r\nGO\r\n"));
    EXPECT_EQ(MSSQLScriptConditions::drop(scriptObject("TYPE", "y")),
              QStringLiteral("IF TYPE_ID(N'[dbo].[y]') IS NOT NULL\r\n\tDROP TYPE [dbo].[y]\r\nGO\r\n"));
    EXPECT_EQ(MSSQLScriptConditions::createSchema(QStringLiteral("s]")),
              QStringLiteral("IF SCHEMA_ID(N's]') IS NULL\r\n\tEXEC(N'CREATE SCHEMA [s]]]')\r\nGO\r\n"));
}

namespace {

/// A database that exists in the test only: a table with rows and a view.
class Scripting : public testing::Test
{
protected:
    Scripting()
    {
        server->answer("List_ExportableDatabaseEntries", {{"dbo.a/b", "dbo", "a/b", "USER_TABLE"},
                                                          {"dbo.a/b_trigger", "dbo", "x", "SQL_TRIGGER"}});
        server->answer(
            "Table_CreationQuery",
            {{"CREATE TABLE [dbo].[a/b] (\r\n\t[id] int IDENTITY\r\n)\r\nGO\r\nALTER TABLE [dbo].[a/b] ADD "
              "CONSTRAINT [FK] FOREIGN KEY ([id]) REFERENCES [dbo].[a/b] ([id])\r\nGO\r\n"}});
        server->answer("ColumnsForTable", {{"id", "int", nullptr, nullptr, nullptr, 0, 1, nullptr, 1},
                                           {"name", "nvarchar", 20}});
    }
    ~Scripting() override { EXPECT_TRUE(TreeTesting::settle()); }

    KNError run(const QString &target, bool isFolder = false)
    {
        MSSQLDatabaseScripter scripter(*server->settings());
        KNError error;
        KNScriptExport scripts;
        scripts.objects = scripter.objects(&error);
        scripts.options = options;
        scripts.path = target;
        scripts.kind = isFolder ? KNScriptTarget::Kind::Folder : KNScriptTarget::Kind::File;
        return error ? error : scripts.run(scripter, {}, [this] { return isCancelled; });
    }
    static QString content(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    const std::shared_ptr<FakeCatalog::Server> server = FakeCatalog::Server::create();
    QTemporaryDir folder;
    KNScriptOptions options;
    bool isCancelled = false;
};

} // namespace

TEST_F(Scripting, WritesForeignKeysBehindTheRows)
{
    options.data = true;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    const KNError error = run(path);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    const QString script = content(path);
    EXPECT_TRUE(script.startsWith(QStringLiteral("CREATE TABLE [dbo].[a/b] ("))) << script.toStdString();
    EXPECT_TRUE(script.endsWith(QStringLiteral("REFERENCES [dbo].[a/b] ([id])\r\nGO\r\n")))
        << script.toStdString();
}

TEST_F(Scripting, LeavesOutChecksWithTheConstraints)
{
    server->answer("Table_CreationQuery",
                   {{"CREATE TABLE [dbo].[a/b] (i int)\r\nGO\r\nALTER TABLE [dbo].[a/b] WITH CHECK ADD "
                     "CONSTRAINT [CK] CHECK ([i]>(0))\r\nGO\r\nALTER TABLE [dbo].[a/b] NOCHECK CONSTRAINT "
                     "[CK]\r\nGO\r\n"}});
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    EXPECT_EQ(content(path).count(QStringLiteral("CONSTRAINT [CK]")), 2);
    options.constraints = false;
    EXPECT_FALSE(run(path));
    EXPECT_FALSE(content(path).contains(QStringLiteral("CONSTRAINT [CK]")));
}

TEST_F(Scripting, LeavesOutForeignKeysIfTheOptionsDo)
{
    options.constraints = false;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    EXPECT_EQ(content(path),
              QStringLiteral("CREATE TABLE [dbo].[a/b] (\r\n\t[id] int IDENTITY\r\n)\r\nGO\r\n"));
}

TEST_F(Scripting, NamesAtItsHeadWhatItLeavesOut)
{
    server->answer("List_ExportableDatabaseEntries",
                   {{"dbo.c", "sales", "Line\nList", "CLR_STORED_PROCEDURE"}});
    options.drops = true;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    const QString script = content(path);
    EXPECT_TRUE(script.startsWith(QStringLiteral("-- Not scripted: clr stored procedure sales.Line")))
        << script.toStdString();
    EXPECT_FALSE(script.section(QStringLiteral("\r\n"), 0, 0).contains(QLatin1Char('\n')));
    EXPECT_FALSE(script.contains(QStringLiteral("DROP PROCEDURE")));
}

TEST_F(Scripting, DropsForeignKeysBeforeTables)
{
    options.drops = true;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    EXPECT_TRUE(content(path).startsWith(QStringLiteral(
        "IF OBJECT_ID(N'[dbo].[FK]') IS NOT NULL\r\n\tALTER TABLE [dbo].[a/b] DROP CONSTRAINT "
        "[FK]\r\nGO\r\nIF OBJECT_ID(N'[dbo].[a/b]') IS NOT NULL\r\n\tDROP TABLE [dbo].[a/b]\r\nGO\r\n")))
        << content(path).toStdString();
}

TEST_F(Scripting, WritesAFileForEachObjectAndOneThatRunsThem)
{
    const QString path = folder.filePath(QStringLiteral("scripts"));
    EXPECT_FALSE(run(path, true));
    EXPECT_EQ(QDir(path).entryList(QDir::Files),
              TreeTesting::list({"_run_all.sql", "dbo.a%002fb.ForeignKeys.sql", "dbo.a%002fb.sql"}));
    EXPECT_EQ(content(path + QStringLiteral("/_run_all.sql")),
              QStringLiteral(":r \"dbo.a%002fb.sql\"\r\n:r \"dbo.a%002fb.ForeignKeys.sql\"\r\n"));
}

TEST_F(Scripting, LeavesTheOldFileAfterAFailureOrACancellation)
{
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    QFile old(path);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    isCancelled = true;
    EXPECT_FALSE(run(path));
    EXPECT_EQ(content(path), QStringLiteral("old"));
    isCancelled = false;
    server->fail("List_ObjectDependencies", KNError(QStringLiteral("SQLClient"), 229, QStringLiteral("No.")));
    EXPECT_EQ(run(path).code(), 229);
    EXPECT_EQ(content(path), QStringLiteral("old"));
}

TEST_F(Scripting, CreatesAStubForAViewThatIsNamedBeforeItExists)
{
    server->answer("List_ExportableDatabaseEntries",
                   {{"dbo.a", "dbo", "a", "VIEW"}, {"dbo.b", "dbo", "b", "VIEW"}});
    server->answer("List_ObjectDependencies", {{"dbo", "a", "dbo", "b"}, {"dbo", "b", "dbo", "a"}});
    server->answer(QStringLiteral("View_AlterQuery"), [](const QString &sql, KNError *) -> FakeCatalog::Rows {
        const bool isA = sql.contains(QStringLiteral("'a'"));
        return {{1, 1,
                 isA ? "CREATE VIEW dbo.a AS SELECT id FROM dbo.b"
                     : "CREATE VIEW dbo.b AS SELECT id FROM dbo.a"}};
    });
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    const QString script = content(path);
    const qsizetype stub = script.indexOf(QStringLiteral(
        "CREATE VIEW [dbo].[a] AS\r\n/* A stub: the definition follows. */\r\nSELECT CAST(NULL AS int) "
        "AS [id], CAST(NULL AS nvarchar(10)) AS [name]\r\nGO\r\n"));
    const qsizetype other = script.indexOf(QStringLiteral("CREATE VIEW dbo.b AS SELECT id FROM dbo.a"));
    const qsizetype itself = script.indexOf(QStringLiteral("ALTER VIEW dbo.a AS SELECT id FROM dbo.b"));
    EXPECT_TRUE(stub >= 0 && stub < other && other < itself) << script.toStdString();
    options.ifNotExists = true;
    EXPECT_FALSE(run(path));
    EXPECT_TRUE(content(path).contains(
        QStringLiteral("IF OBJECT_DEFINITION(OBJECT_ID(N'[dbo].[a]')) LIKE N'%A stub: the definition "
                       "follows.%'\r\n\tEXEC(N'ALTER VIEW dbo.a AS SELECT id FROM dbo.b')\r\nGO\r\n")))
        << content(path).toStdString();
}

TEST_F(Scripting, CreatesAStubForAnInlineFunctionThatIsNamedBeforeItExists)
{
    server->answer(
        "List_ExportableDatabaseEntries",
        {{"dbo.f", "dbo", "f", "SQL_INLINE_TABLE_VALUED_FUNCTION"}, {"dbo.v", "dbo", "v", "VIEW"}});
    server->answer("List_ObjectDependencies", {{"dbo", "f", "dbo", "v", 0}, {"dbo", "v", "dbo", "f", 0}});
    server->answer("View_AlterQuery", {{1, 1, "CREATE VIEW dbo.v AS SELECT id FROM dbo.f(1, DEFAULT)"}});
    server->answer(
        "Function_AlterQuery",
        {{"SET ANSI_NULLS ON", "SET QUOTED_IDENTIFIER ON",
          "CREATE FUNCTION dbo.f (@a int, @b money = 1) RETURNS TABLE AS RETURN SELECT id FROM dbo.v"}});
    server->answer("List_ParametersForStoredProcedure",
                   {{"@a", "int", 1, 0, "int"}, {"@b", "[dbo].[Rows]", 2, 0, "table type"}});
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    const QString script = content(path);
    const qsizetype stub =
        script.indexOf(QStringLiteral("CREATE FUNCTION [dbo].[f] (@a int = NULL, @b [dbo].[Rows] "
                                      "READONLY)\r\nRETURNS TABLE AS\r\n/* A stub: "
                                      "the definition follows. */\r\nRETURN SELECT CAST(NULL AS int) AS "
                                      "[id], CAST(NULL AS nvarchar(10)) AS "
                                      "[name]\r\nGO\r\n"));
    const qsizetype view = script.indexOf(QStringLiteral("CREATE VIEW dbo.v"));
    const qsizetype itself = script.indexOf(QStringLiteral("ALTER FUNCTION dbo.f (@a int, @b money = 1)"));
    EXPECT_TRUE(stub >= 0 && stub < view && view < itself) << script.toStdString();
}

TEST_F(Scripting, NamesObjectsThatAreBoundInACycle)
{
    server->answer("List_ExportableDatabaseEntries",
                   {{"dbo.t", "dbo", "t", "USER_TABLE"}, {"dbo.f", "dbo", "f", "SQL_SCALAR_FUNCTION"}});
    server->answer("List_ObjectDependencies", {{"dbo", "t", "dbo", "f", 1}, {"dbo", "f", "dbo", "t", 1}});
    server->answer("Function_AlterQuery",
                   {{"SET ANSI_NULLS ON", "SET QUOTED_IDENTIFIER ON",
                     "CREATE FUNCTION dbo.f () RETURNS int WITH SCHEMABINDING AS BEGIN "
                     "RETURN (SELECT MAX(i) FROM dbo.t) END"}});
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    EXPECT_TRUE(
        content(path).startsWith(QStringLiteral("-- Not scripted: an order in which dbo.f can be created. It "
                                                "names dbo.t, which depends on it and comes "
                                                "behind it.\r\n")))
        << content(path).toStdString();
}

TEST_F(Scripting, InsertsRowsInTheOrderOfForeignKeys)
{
    server->answer("List_ExportableDatabaseEntries", {{"dbo.a", "dbo", "a", "USER_TABLE"},
                                                      {"dbo.b", "dbo", "b", "USER_TABLE"},
                                                      {"dbo.c", "dbo", "c", "USER_TABLE"}});
    server->answer("List_ForeignKeysForScripts", {{"dbo", "a", "FK_ab", "dbo", "b", 0, 0},
                                                  {"dbo", "b", "FK_self", "dbo", "b", 0, 1},
                                                  {"dbo", "b", "FK_off", "dbo", "a", 1, 1}});
    options.data = true;
    options.schema = false;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path, true));
    EXPECT_EQ(
        content(path + QStringLiteral("/_run_all.sql")),
        QStringLiteral(":r \"_KeysOff.sql\"\r\n:r \"dbo.b.sql\"\r\n:r \"dbo.a.sql\"\r\n:r \"dbo.c.sql\"\r\n"
                       ":r \"_KeysOn.sql\"\r\n"));
    EXPECT_EQ(content(path + QStringLiteral("/_KeysOff.sql")),
              QStringLiteral("ALTER TABLE [dbo].[b] NOCHECK CONSTRAINT [FK_self]\r\nGO\r\n"));
    EXPECT_EQ(content(path + QStringLiteral("/_KeysOn.sql")),
              QStringLiteral("ALTER TABLE [dbo].[b] WITH NOCHECK CHECK CONSTRAINT [FK_self]\r\nGO\r\n"));
}

TEST_F(Scripting, WritesTableTypesBeforeTables)
{
    server->answer(QStringLiteral("List_UserTypesByTypeInDatabase_NonSystem"),
                   [](const QString &sql, KNError *) -> FakeCatalog::Rows {
                       return sql.contains(QStringLiteral("is_table_type = 1"))
                                  ? FakeCatalog::Rows{{"sales", "Lines"}}
                                  : FakeCatalog::Rows{};
                   });
    server->answer("TableType_CreationQuery",
                   {{0, 1, "[a] int NOT NULL", nullptr, nullptr, 0},
                    {0, 2, "[b] nvarchar(10) NULL DEFAULT (N'')", nullptr, nullptr, 0},
                    {1, 1, "PRIMARY KEY CLUSTERED", "[a] ASC", " WITH (IGNORE_DUP_KEY = ON)", 0},
                    {1, 1, "PRIMARY KEY CLUSTERED", "[b] DESC", " WITH (IGNORE_DUP_KEY = ON)", 0},
                    {2, 0, "CHECK ([a]>(0))", nullptr, nullptr, 0}});
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    const QString type = QStringLiteral("CREATE TYPE [sales].[Lines] AS TABLE (\r\n\t[a] int NOT "
                                        "NULL,\r\n\t[b] nvarchar(10) NULL DEFAULT (N''),\r\n"
                                        "\tPRIMARY KEY CLUSTERED ([a] ASC, [b] DESC) WITH (IGNORE_DUP_KEY = "
                                        "ON),\r\n\tCHECK ([a]>(0))\r\n)\r\nGO\r\n");
    EXPECT_TRUE(content(path).contains(type)) << content(path).toStdString();
    EXPECT_LT(content(path).indexOf(type), content(path).indexOf(QStringLiteral("CREATE TABLE")));
    options.drops = true;
    EXPECT_FALSE(run(path));
    EXPECT_TRUE(content(path).contains(QStringLiteral(
        "IF TYPE_ID(N'[sales].[Lines]') IS NOT NULL\r\n\tDROP TYPE [sales].[Lines]\r\nGO\r\n")));
}

TEST_F(Scripting, WritesPropertiesPermissionsAndTriggersOfViewsLast)
{
    server->answer("List_ExtendedPropertyStatements",
                   {{"OBJECT", "dbo", "a/b", "NOT EXISTS (SELECT 1)", "EXEC sp_addextendedproperty N'it''s'",
                     nullptr, nullptr},
                    {"OBJECT", "dbo", "a/b", nullptr, "EXEC of an index", "INDEX", nullptr},
                    {"OBJECT", "dbo", "unknown", nullptr, "EXEC of another", nullptr, nullptr},
                    {"SCHEMA", "dbo", "", nullptr, "EXEC of a schema", nullptr, nullptr}});
    server->answer(
        "List_PermissionStatements",
        {{"OBJECT", "dbo", "a/b", nullptr, "GRANT SELECT ON OBJECT::[dbo].[a/b] TO [u]", nullptr, nullptr}});
    server->answer("List_ViewTriggerStatements",
                   {{"OBJECT", "dbo", "a/b", "OBJECT_ID(N'[dbo].[tr]') IS NULL", "CREATE TRIGGER dbo.tr",
                     "TRIGGER", "SET ANSI_NULLS OFF\r\nGO\r\n"}});
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    EXPECT_FALSE(run(path));
    EXPECT_TRUE(content(path).endsWith(
        QStringLiteral("SET ANSI_NULLS OFF\r\nGO\r\nCREATE TRIGGER dbo.tr\r\nGO\r\nEXEC of a schema\r\nGO\r\n"
                       "EXEC sp_addextendedproperty N'it''s'\r\nGO\r\nEXEC of an index\r\nGO\r\n")))
        << content(path).toStdString();
    options.permissions = true;
    options.indexes = false;
    options.ifNotExists = true;
    EXPECT_FALSE(run(path));
    EXPECT_TRUE(content(path).endsWith(
        QStringLiteral("SET ANSI_NULLS OFF\r\nGO\r\nIF OBJECT_ID(N'[dbo].[tr]') IS NULL\r\n\tEXEC(N'CREATE "
                       "TRIGGER dbo.tr')\r\nGO\r\n"
                       "EXEC of a schema\r\nGO\r\nIF NOT EXISTS (SELECT 1)\r\n\tEXEC(N'EXEC "
                       "sp_addextendedproperty N''it''''s''')"
                       "\r\nGO\r\nGRANT SELECT ON OBJECT::[dbo].[a/b] TO [u]\r\nGO\r\n")))
        << content(path).toStdString();
    options.extendedProperties = false;
    options.triggers = false;
    EXPECT_FALSE(run(path));
    EXPECT_FALSE(content(path).contains(QStringLiteral("EXEC of a schema")));
    EXPECT_FALSE(content(path).contains(QStringLiteral("CREATE TRIGGER")));
}

TEST(ScriptFileNames, AreSafeAndDiffer)
{
    EXPECT_EQ(KNScriptTarget::fileNameFor(QStringLiteral("dbo.Orders")), QStringLiteral("dbo.Orders.sql"));
    EXPECT_EQ(KNScriptTarget::fileNameFor(QStringLiteral("../etc/passwd")),
              QStringLiteral("..%002fetc%002fpasswd.sql"));
    EXPECT_NE(KNScriptTarget::fileNameFor(QStringLiteral("a%b")),
              KNScriptTarget::fileNameFor(QStringLiteral("a/b")));
}
