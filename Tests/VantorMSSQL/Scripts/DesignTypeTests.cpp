#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "TableDesign/MSSQLColumnTypes.h"
#include "TableDesign/MSSQLTableDesign.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace DesignTypeTests {

namespace {

/// What an edition's server is offered for columns of the sample database.
class DesignTypes : public testing::TestWithParam<const char *>
{
protected:
    DesignTypes()
        : m_server({.arguments = {"--edition", GetParam()}})
        , m_settings(WireTest::settings(m_server.port()))
    {
        m_settings->setDatabase(QStringLiteral("shop"));
        m_settings->setConnectionId(KNFormat("types-%@-%@", GetParam(), QString::number(m_server.port())));
    }
    /// A client with settings of its own, into which it writes what its login finds out.
    std::unique_ptr<MSSQLClient> ownClient() const
    {
        return WireTest::connectedClient(
            std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(m_settings->copy()));
    }
    ~DesignTypes() override { VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients(); }

    const SampleServerFixture m_server;
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Editions, DesignTypes, testing::Values("2000", "2008", "2022", "azure"),
                         [](const auto &test) { return std::string(test.param); });

TEST_P(DesignTypes, AreThoseThatTheEditionTakesAndTheAliasTypesOfTheDatabase)
{
    const QStringList types = MSSQLColumnTypes::of(*m_settings);
    const std::string edition = GetParam();
    EXPECT_EQ(types.contains(QStringLiteral("nvarchar(max)")), edition != "2000");
    EXPECT_EQ(types.contains(QStringLiteral("datetime2(7)")), edition != "2000");
    EXPECT_EQ(types.contains(QStringLiteral("json")), edition == "azure");
    EXPECT_TRUE(types.contains(QStringLiteral("sales.PhoneNumber"))) << types.join(u' ').toStdString();

    // The sample server refuses three types that real servers have.
    const QStringList unsupported{QStringLiteral("geography"), QStringLiteral("geometry"),
                                  QStringLiteral("json")};
    const auto client = ownClient();
    for (const QString &type : types) {
        if (unsupported.contains(type))
            continue;
        KNError error;
        client->executeNonQuery(KNFormat("CREATE TABLE TypeTrial (a %@)", type), &error);
        EXPECT_FALSE(error) << type.toStdString() << ": " << error.localizedDescription().toStdString();
        client->executeNonQuery(QStringLiteral("DROP TABLE TypeTrial"), &error);
    }
}

TEST_P(DesignTypes, EveryKindOfEditRunsOnTheEdition)
{
    const auto client = ownClient();
    const auto columns = [&] {
        KNError error;
        const auto list = MSSQLCatalogReader::records<MSSQLColumnRecord>(
            *m_settings, QStringLiteral("dbo"), QStringLiteral("Trial"), "test", &error);
        QStringList texts;
        for (const MSSQLColumnRecord &column : list)
            texts.append(KNFormat("%@ %@%@%@ %@", column.columnName, column.displayType(),
                                  column.isNullable ? " null" : "", column.isPrimaryKey ? " pk" : "",
                                  column.defaultValue.isNull() ? QStringLiteral("-") : column.defaultValue));
        return texts.join(QStringLiteral(", "));
    };
    const auto make = [&](const KNColumnEdit &edit) {
        KNError error;
        MSSQLTableDesign design({QStringLiteral("dbo"), QStringLiteral("Trial")}, m_settings);
        for (const KNDesignStep &step : design.steps(edit, true, &error)) {
            if (!error)
                error = WireTest::runScript(*client, step.script);
        }
        return error;
    };
    using Property = KNColumnEdit::Property;
    const auto kind = KNColumnEdit::Kind::Change;
    EXPECT_FALSE(WireTest::runScript(
        *client, QStringLiteral("CREATE TABLE dbo.Trial (a int NULL, b int NOT NULL, "
                                "CONSTRAINT PK_Trial PRIMARY KEY NONCLUSTERED (b DESC))")));
    const KNError made = make({kind,
                               QStringLiteral("a"),
                               {{Property::Nullable, false},
                                {Property::Default, QStringLiteral("7")},
                                {Property::Primary, true},
                                {Property::Name, QStringLiteral("c")}}});
    EXPECT_FALSE(made) << made.localizedDescription().toStdString();
    const QString after = QStringLiteral("c int pk (7), b int pk -");
    EXPECT_EQ(columns().replace(QStringLiteral("((7))"), QStringLiteral("(7)")), after);
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT COUNT(*) FROM sysobjects WHERE name = "
                                                       "'PK_Trial' AND xtype = 'PK'"))
                  .toInt64(),
              1);
    const QString before = columns();
    EXPECT_TRUE(make({kind, QStringLiteral("c"), {{Property::Default, QStringLiteral("no such(")}}}));
    EXPECT_TRUE(make({kind, QStringLiteral("c"), {{Property::Name, QStringLiteral("b")}}}));
    EXPECT_EQ(columns(), before);
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT @@TRANCOUNT")).toInt64(), 0);
    EXPECT_FALSE(
        make({kind, QStringLiteral("c"), {{Property::Primary, false}, {Property::Default, QString()}}}));
    EXPECT_FALSE(make({kind, QStringLiteral("c"), {{Property::Type, QStringLiteral("bigint")}}}));
    EXPECT_EQ(columns(), QStringLiteral("c bigint -, b int pk -"));
    EXPECT_FALSE(make({KNColumnEdit::Kind::Drop, QStringLiteral("c"), {}}));
    EXPECT_FALSE(make({KNColumnEdit::Kind::Add, QStringLiteral("d"), {}}));
    EXPECT_EQ(columns(), QStringLiteral("b int pk -, d int null -"));
}

} // namespace DesignTypeTests
