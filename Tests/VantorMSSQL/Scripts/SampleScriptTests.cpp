#include "Database/KNRowStream.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNQuerySplitter.h"
#include "Scripts/MSSQLScriptAlterFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptAlterStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"
#include "Scripts/MSSQLScriptCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTableQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropAndCreateViewQueryLoader.h"
#include "Scripts/MSSQLScriptDropFunctionQueryLoader.h"
#include "Scripts/MSSQLScriptDropStoredProcedureQueryLoader.h"
#include "Scripts/MSSQLScriptDropTypeQueryLoader.h"
#include "Scripts/MSSQLScriptDropViewQueryLoader.h"
#include "Scripts/MSSQLScriptTableAsMySQLQueryLoader.h"
#include "VantorMSSQL/Catalog/AnswerFile.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QRegularExpression>

#include <functional>
#include <map>

using namespace WireTest;

namespace {

struct ScriptedObject
{
    const char *script; ///< which generator makes it
    const char *schema;
    const char *name;
};

constexpr ScriptedObject ScriptedObjects[] = {
    {"CreateTable", "sales", "Stores"},
    {"CreateTable", "dbo", "bracket]ed"},
    {"CreateTable", "dbo", "NoSuchTable"},
    {"DropAndCreateTable", "dbo", "gifts 🎁"},
    {"CreateView", "sales", "CustomerOrders"},
    {"AlterView", "sales", "OrderTotals"},
    {"AlterView", "dbo", "SecretPrices"},
    {"DropView", "hr", "Staff, by department"},
    {"DropAndCreateView", "hr", "Staff, by department"},
    {"CreateStoredProcedure", "sales", "PlaceOrder"},
    {"CreateStoredProcedure", "dbo", "SecretProcedure"},
    {"AlterStoredProcedure", "dbo", "List things; \"all\" of them"},
    {"AlterStoredProcedure", "dbo", "SecretProcedure"},
    {"DropStoredProcedure", "dbo", "List things; \"all\" of them"},
    {"DropAndCreateStoredProcedure", "hr", "RaiseSalaries"},
    {"CreateFunction", "sales", "OrderTotal"},
    {"AlterFunction", "hr", "Subordinates"},
    {"AlterFunction", "hr", "NoSuchFunction"},
    {"DropFunction", "sales", "OrdersOf"},
    {"DropAndCreateFunction", "sales", "OrdersOf"},
    {"CreateType", "sales", "PhoneNumber"},
    {"CreateType", "dbo", "Flag"},
    {"DropType", "sales", "PhoneNumber"},
    {"DropAndCreateType", "sales", "PhoneNumber"},
    {"TableAsMySQL", "dbo", "OrderLines"},
    {"TableAsMySQL", "hr", "Notes"},
    {"TableAsMySQL", "dbo", "it's"},
};

/// A name of the sample database with its schema.
struct Name
{
    QString schema;
    QString name;

    QString text() const { return KNFormat("%@.%@", schema, name); }
};

template <typename Loader, typename... Arguments>
KNQueryLoaderPtr make(const Arguments &...arguments)
{
    return std::make_shared<Loader>(arguments...);
}

/// The generator of this name for an object.
KNQueryLoaderPtr loader(const char *script, const Name &name)
{
    static const std::map<std::string, std::function<KNQueryLoaderPtr(const Name &)>> makers{
        {"AlterFunction",
         [](const Name &object) {
             return make<MSSQLScriptAlterFunctionQueryLoader>(object.name, object.schema);
         }},
        {"AlterStoredProcedure",
         [](const Name &object) {
             return make<MSSQLScriptAlterStoredProcedureQueryLoader>(object.name, object.schema);
         }},
        {"AlterView",
         [](const Name &object) {
             return make<MSSQLScriptAlterViewQueryLoader>(object.name, object.schema);
         }},
        {"CreateFunction",
         [](const Name &function) { return make<MSSQLScriptCreateFunctionQueryLoader>(function.text()); }},
        {"CreateStoredProcedure",
         [](const Name &object) {
             return make<MSSQLScriptCreateStoredProcedureQueryLoader>(object.name, object.schema);
         }},
        {"CreateTable",
         [](const Name &object) {
             return make<MSSQLScriptCreateTableQueryLoader>(object.name, object.schema);
         }},
        {"CreateType",
         [](const Name &type) { return make<MSSQLScriptCreateTypeQueryLoader>(type.name, type.schema, 0); }},
        {"CreateView",
         [](const Name &object) {
             return make<MSSQLScriptCreateViewQueryLoader>(object.name, object.schema);
         }},
        {"DropAndCreateFunction",
         [](const Name &function) {
             return make<MSSQLScriptDropAndCreateFunctionQueryLoader>(function.text());
         }},
        {"DropAndCreateStoredProcedure",
         [](const Name &object) {
             return make<MSSQLScriptDropAndCreateStoredProcedureQueryLoader>(object.name, object.schema);
         }},
        {"DropAndCreateTable",
         [](const Name &object) {
             return make<MSSQLScriptDropAndCreateTableQueryLoader>(object.name, object.schema);
         }},
        {"DropAndCreateType",
         [](const Name &type) {
             return make<MSSQLScriptDropAndCreateTypeQueryLoader>(type.name, type.schema, 0);
         }},
        {"DropAndCreateView",
         [](const Name &object) {
             return make<MSSQLScriptDropAndCreateViewQueryLoader>(object.name, object.schema);
         }},
        {"DropFunction",
         [](const Name &object) {
             return make<MSSQLScriptDropFunctionQueryLoader>(object.name, object.schema);
         }},
        {"DropStoredProcedure",
         [](const Name &object) {
             return make<MSSQLScriptDropStoredProcedureQueryLoader>(object.name, object.schema);
         }},
        {"DropType",
         [](const Name &type) { return make<MSSQLScriptDropTypeQueryLoader>(type.name, type.schema, 0); }},
        {"DropView",
         [](const Name &object) { return make<MSSQLScriptDropViewQueryLoader>(object.name, object.schema); }},
        {"TableAsMySQL",
         [](const Name &table) {
             return make<MSSQLScriptTableAsMySQLQueryLoader>(table.name, table.schema, true, true, true);
         }},
    };
    return makers.at(script)(name);
}

class SampleScripts : public testing::TestWithParam<const char *>
{
protected:
    SampleScripts()
        : m_sample({.arguments = {"--edition", GetParam()}})
    {
    }
    ~SampleScripts() override { VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients(); }

    std::shared_ptr<MSSQLDatabaseConnectionDetails> database(const char *name)
    {
        auto details = settings(m_sample.port());
        details->setDatabase(QString::fromUtf8(name));
        return details;
    }

    /// Runs a script as a person would, all batches of it; the server's error, if any.
    static KNError execute(const VantorDBC &details, const QString &script)
    {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) { *failure = runScript(client, script); },
            details, &error);
        return error;
    }

    static QList<Name> names(const VantorDBC &details, const QString &sql)
    {
        QList<Name> found;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(sql, failure);
                while (rows && rows->next())
                    found.append({rows->stringForColumnIndex(0), rows->stringForColumnIndex(1)});
            },
            details, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return found;
    }

    static QString script(const VantorDBC &details, const char *kind, const Name &name)
    {
        return ScriptTest::textOf(loader(kind, name), details);
    }

private:
    SampleServerFixture m_sample;
};

class ScriptRoundTrip : public SampleScripts
{
};

/// Text without the line ends that would make a golden file hard to read.
QString readable(QString text)
{
    if (text.isNull())
        return QStringLiteral("(no text)");
    return text.replace(QLatin1String("\r\n"), QLatin1String("\n")).trimmed();
}

} // namespace

// VANTOR_RENEW_GOLDEN=1 writes the file anew.
TEST_P(SampleScripts, AreAsInTheGoldenFile)
{
    const auto shop = database("shop");
    QList<std::pair<QString, QString>> scripts;
    for (const ScriptedObject &object : ScriptedObjects) {
        const Name name{QString::fromUtf8(object.schema), QString::fromUtf8(object.name)};
        const QString text = script(*shop, object.script, name);
        EXPECT_FALSE(text.contains(QRegularExpression(QStringLiteral("CREATE TABLE [^\r]*\n"))))
            << "line ends of generated scripts are CR LF: " << text.toStdString();
        scripts.append({KNFormat("%s %@", object.script, name.text()), readable(text)});
    }
    AnswerFile golden(QStringLiteral(SCRIPTS_GOLDEN_FILE));
    const QString edition = QString::fromLatin1(GetParam());
    if (qEnvironmentVariableIsSet("VANTOR_RENEW_GOLDEN"))
        golden.renew(edition, scripts);
    for (const auto &[title, text] : scripts)
        EXPECT_EQ(text, golden.answer(edition, title)) << title.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Server, SampleScripts, testing::Values("2000", "2008", "2022", "azure"),
                         [](const auto &edition) { return "Of" + std::string(edition.param); });

TEST_P(ScriptRoundTrip, MakeTheSameObjectsInAnEmptyDatabase)
{
    const auto shop = database("shop");
    run(*connectedClient(database("")), QStringLiteral("CREATE DATABASE again"));
    const auto again = database("again");
    for (const char *schema : {"sales", "hr"})
        ASSERT_FALSE(execute(*again, KNFormat("CREATE SCHEMA %s", schema)));
    // What has no script of its own.
    ASSERT_FALSE(execute(
        *again, QStringLiteral("CREATE TYPE sales.LineList AS TABLE (LineNumber int NOT NULL PRIMARY KEY, "
                               "ProductId int NOT NULL, Quantity smallint NOT NULL)")));

    const char *const modules =
        "SELECT SCHEMA_NAME(o.schema_id), o.name FROM sys.objects o JOIN sys.sql_modules m ON "
        "m.object_id = o.object_id WHERE m.definition IS NOT NULL AND o.type IN (%s) ORDER BY "
        "o.object_id";
    const QList<std::pair<const char *, QString>> kinds{
        {"CreateType", QStringLiteral("SELECT SCHEMA_NAME(schema_id), name FROM sys.types WHERE "
                                      "is_user_defined = 1 AND is_table_type = 0 ORDER BY name")},
        {"CreateTable",
         QStringLiteral("SELECT SCHEMA_NAME(schema_id), name FROM sys.tables ORDER BY object_id")},
        {"CreateView", KNFormat(modules, "'V'")},
        {"CreateFunction", KNFormat(modules, "'FN', 'IF', 'TF'")},
        {"CreateStoredProcedure", KNFormat(modules, "'P'")},
    };
    int scripted = 0;
    for (const auto &[kind, query] : kinds) {
        QStringList references; // what belongs to a table may name others: when all of them are there
        QList<std::pair<Name, QString>> scripts;
        for (const Name &name : names(*shop, query)) {
            const QString text = script(*shop, kind, name);
            scripts.append({name, text});
            const auto splitter = again->createQuerySplitter();
            splitter->setRequiresFullSplit(true);
            for (const KNQueryDetails &batch : splitter->doSplitQuery(text)) {
                const QString &sql = batch.targetQuery;
                if (QLatin1String(kind) == QLatin1String("CreateTable") &&
                    !sql.contains(QLatin1String("CREATE TABLE")))
                    references.append(sql);
                else if (const KNError error = execute(*again, sql))
                    ADD_FAILURE() << name.text().toStdString() << ": "
                                  << error.localizedDescription().toStdString();
            }
        }
        for (const QString &sql : std::as_const(references)) {
            const KNError error = execute(*again, sql);
            EXPECT_FALSE(error) << sql.toStdString() << error.localizedDescription().toStdString();
        }
        for (const auto &[name, text] : std::as_const(scripts))
            EXPECT_EQ(script(*again, kind, name), text) << name.text().toStdString();
        scripted += static_cast<int>(scripts.size());
    }
    EXPECT_GT(scripted, 40);
}

TEST_P(ScriptRoundTrip, DropAndMakeAnObjectAnew)
{
    const auto shop = database("shop");
    ASSERT_FALSE(execute(*shop, QStringLiteral("CREATE PROCEDURE dbo.Simple AS SELECT 1")));
    ASSERT_FALSE(execute(*shop, QStringLiteral("CREATE TYPE dbo.Sized FROM nvarchar(12) NOT NULL")));
    const std::tuple<const char *, const char *, Name> cases[] = {
        {"DropAndCreateTable", "CreateTable", {QStringLiteral("dbo"), QStringLiteral("AuditLog")}},
        {"DropAndCreateTable", "CreateTable", {QStringLiteral("dbo"), QStringLiteral("Settings")}},
        {"DropAndCreateView", "CreateView", {QStringLiteral("hr"), QStringLiteral("Staff, by department")}},
        {"DropAndCreateView", "CreateView", {QStringLiteral("sales"), QStringLiteral("CustomerOrders")}},
        {"DropAndCreateStoredProcedure",
         "CreateStoredProcedure",
         {QStringLiteral("dbo"), QStringLiteral("Simple")}},
        {"DropAndCreateFunction", "CreateFunction", {QStringLiteral("sales"), QStringLiteral("OrdersOf")}},
        {"DropAndCreateType", "CreateType", {QStringLiteral("dbo"), QStringLiteral("Sized")}},
    };
    for (const auto &[dropAndCreate, create, name] : cases) {
        const QString before = script(*shop, create, name);
        const KNError error = execute(*shop, script(*shop, dropAndCreate, name));
        EXPECT_FALSE(error) << name.text().toStdString() << error.localizedDescription().toStdString();
        EXPECT_EQ(script(*shop, create, name), before) << name.text().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Server, ScriptRoundTrip, testing::Values("2008", "2022", "azure"),
                         [](const auto &edition) { return "Of" + std::string(edition.param); });

TEST(RowStream, ReportsAnErrorThatCameBehindRows)
{
    QStringList read;
    const auto details = WireTest::settings(SampleServerFixture::shared().port());
    const auto keep = [&](const KNRow &row) { read.append(row.value(0).displayText()); };
    const KNError cutOff = KNRowStream::eachRow(
        *details, QStringLiteral("SELECT 1 AS a UNION ALL SELECT 2 RAISERROR (N'cut off', 16, 1)"), keep);
    EXPECT_EQ(read, (QStringList{QStringLiteral("1"), QStringLiteral("2")}));
    EXPECT_TRUE(cutOff);
    EXPECT_EQ(cutOff.localizedDescription(), QStringLiteral("Msg 50000, Level 16, State 1.\r\ncut off"));
    EXPECT_FALSE(KNRowStream::eachRow(*details, QStringLiteral("SELECT 3 AS a PRINT N'done'"), keep));
    EXPECT_TRUE(KNRowStream::eachRow(*details, QStringLiteral("SELECT a FROM dbo.NoSuchTable"), keep));
}
