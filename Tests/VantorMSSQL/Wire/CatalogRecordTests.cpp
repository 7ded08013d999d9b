#include "Catalog/MSSQLColumnRecord.h"
#include "Catalog/MSSQLForeignKeyEntry.h"
#include "Catalog/MSSQLIndexEntry.h"
#include "Catalog/MSSQLKeyRecord.h"
#include "Catalog/MSSQLParameterRecord.h"
#include "Catalog/MSSQLTriggerEntry.h"
#include "Scripts/MSSQLStatementTemplate.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;

namespace {

/// A server with the tables, the trigger and the procedure that the tests read.
class CatalogRecords : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const auto client = connectedClient(settings(SampleServerFixture::shared().port()));
        for (const char *sql :
             {"CREATE SCHEMA records",
              "CREATE TABLE records.Parent (a int NOT NULL, b nvarchar(20) NOT NULL, CONSTRAINT PK_Parent "
              "PRIMARY KEY "
              "(b, a))",
              "CREATE TABLE records.Child (id int IDENTITY(1,1) NOT NULL, x nvarchar(20) NULL, y int NULL "
              "DEFAULT 7, "
              "amount decimal(9,2) NULL, CONSTRAINT FK_Child FOREIGN KEY (x, y) REFERENCES records.Parent "
              "(b, a) ON "
              "DELETE CASCADE)",
              "CREATE UNIQUE NONCLUSTERED INDEX IX_Child ON records.Child (y, x)",
              "CREATE TRIGGER records.Child_Trigger ON records.Child AFTER INSERT, UPDATE AS PRINT 'x'",
              "CREATE PROCEDURE records.Run @name nvarchar(50), @count int OUTPUT AS SELECT @count = 1"}) {
            KNError error;
            client->executeNonQuery(QString::fromLatin1(sql), &error);
            ASSERT_FALSE(error) << error.localizedDescription().toStdString();
        }
    }

    template <typename Record>
    QList<Record> read(const char *object)
    {
        KNError error;
        const auto records = MSSQLCatalogReader::records<Record>(
            *settings(SampleServerFixture::shared().port()), QStringLiteral("records"),
            QString::fromLatin1(object), "tests.records", &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return records;
    }
};

} // namespace

TEST_F(CatalogRecords, DescribeColumns)
{
    const auto columns = read<MSSQLColumnRecord>("Child");
    ASSERT_EQ(columns.size(), 4);
    EXPECT_EQ(columns[0].columnName, QStringLiteral("id"));
    EXPECT_TRUE(columns[0].isIdentity);
    EXPECT_FALSE(columns[0].isNullable);
    EXPECT_TRUE(columns[0].defaultValue.isNull());
    EXPECT_EQ(columns[1].displayType(), QStringLiteral("nvarchar(20)"));
    EXPECT_EQ(columns[2].defaultValue, QStringLiteral("((7))"));
    EXPECT_TRUE(columns[2].isNullable);
    EXPECT_EQ(columns[3].displayType(), QStringLiteral("decimal(9,2)"));
    const auto parent = read<MSSQLColumnRecord>("Parent");
    ASSERT_EQ(parent.size(), 2);
    EXPECT_TRUE(parent[0].isPrimaryKey);
}

TEST_F(CatalogRecords, DescribeKeysAndForeignKeys)
{
    const auto keys = read<MSSQLKeyRecord>("Parent");
    ASSERT_EQ(keys.size(), 1);
    EXPECT_EQ(keys[0].keyName, QStringLiteral("PK_Parent"));
    EXPECT_TRUE(keys[0].isPrimaryKey);

    const auto foreign = read<MSSQLForeignKeyEntry>("Child");
    ASSERT_EQ(foreign.size(), 1);
    EXPECT_EQ(foreign[0].keyName, QStringLiteral("FK_Child"));
    EXPECT_EQ(foreign[0].targetTable, QStringLiteral("Parent"));
    EXPECT_EQ(foreign[0].targetTableSchema, QStringLiteral("records"));
    EXPECT_EQ(foreign[0].localColumns, (QStringList{QStringLiteral("x"), QStringLiteral("y")}));
    EXPECT_EQ(foreign[0].targetColumns, (QStringList{QStringLiteral("b"), QStringLiteral("a")}));
    EXPECT_EQ(foreign[0].deleteRuleDisplay(), QStringLiteral("Cascade"));
    EXPECT_EQ(foreign[0].updateRuleDisplay(), QStringLiteral("No Action"));
}

TEST_F(CatalogRecords, DescribeIndexesWithTheirKeyColumns)
{
    const auto indexes = read<MSSQLIndexEntry>("Child");
    ASSERT_EQ(indexes.size(), 1);
    EXPECT_EQ(indexes[0].indexName, QStringLiteral("IX_Child"));
    EXPECT_TRUE(indexes[0].isUnique);
    EXPECT_TRUE(indexes[0].isNonClustered);
    EXPECT_EQ(indexes[0].columns,
              (QList<MSSQLIndexColumnEntry>{{QStringLiteral("y")}, {QStringLiteral("x")}}));
    const auto primary = read<MSSQLIndexEntry>("Parent");
    ASSERT_EQ(primary.size(), 1);
    EXPECT_EQ(primary[0].indexName, QStringLiteral("PRIMARY"));
    EXPECT_FALSE(primary[0].isNonClustered);
}

TEST_F(CatalogRecords, DescribeTriggersAndParameters)
{
    const auto triggers = read<MSSQLTriggerEntry>("Child");
    ASSERT_EQ(triggers.size(), 1);
    EXPECT_EQ(triggers[0].triggerName, QStringLiteral("Child_Trigger"));
    EXPECT_EQ(triggers[0].timing, QStringLiteral("AFTER"));
    EXPECT_EQ(triggers[0].event, QStringLiteral("INSERT, UPDATE"));
    EXPECT_TRUE(triggers[0].enabled);
    EXPECT_TRUE(triggers[0].statement.startsWith(QStringLiteral("CREATE TRIGGER")));

    const auto parameters = read<MSSQLParameterRecord>("Run");
    ASSERT_EQ(parameters.size(), 2);
    EXPECT_EQ(parameters[0].parameterName, QStringLiteral("@name"));
    EXPECT_EQ(parameters[0].typeName, QStringLiteral("nvarchar(50)"));
    EXPECT_FALSE(parameters[0].isOutput);
    EXPECT_TRUE(parameters[1].isOutput);
}

TEST_F(CatalogRecords, AreNoneAfterAnErrorInTheGivenDomain)
{
    const auto details = settings(SampleServerFixture::shared().port());
    details->setDatabase(QStringLiteral("NoSuchDatabase"));
    KNError error;
    EXPECT_TRUE(MSSQLCatalogReader::records<MSSQLKeyRecord>(*details, QStringLiteral("records"),
                                                            QStringLiteral("Parent"), "tests.records", &error)
                    .isEmpty());
    EXPECT_EQ(error.domain(), QStringLiteral("tests.records"));
}

TEST(ForeignKeyEntry, ShowsNothingForAnUnknownRule)
{
    MSSQLForeignKeyEntry key;
    for (const qint64 rule : {-1, 4, 99}) {
        key.deleteRule = rule;
        EXPECT_EQ(key.deleteRuleDisplay(), QString());
    }
    key.updateRule = 3;
    EXPECT_EQ(key.updateRuleDisplay(), QStringLiteral("SET DEFAULT"));
}

TEST(VersionHelper, LearnsVersionFromConnectedClient)
{
    using namespace HostileServerBytes;
    const auto answer = [](const Bytes &bytes) {
        return HostileServer::Script{HostileServer::expect(BatchPacket), HostileServer::send(packet(bytes))};
    };
    HostileServer::Script script = HostileServer::acceptedLogin();
    // The session's settings, the version, the databases.
    for (const Bytes &bytes :
         {done(),
          HostileServerBytes::joined(
              {textColumn("version"), textRow("Microsoft SQL Server 2022"), done(DoneCount, 1)}),
          HostileServerBytes::joined({textColumn("name"), textRow("one"), done(DoneCount, 1)})})
        script = HostileServer::joined(script, answer(bytes));
    HostileServer server(script);
    const auto details = settings(server.port());
    details->setTdsVersion(8);
    details->setUseNTLMv2(false);
    details->setConnectionId(QStringLiteral("told by a client"));
    MSSQLClient client(details);
    KNError error;
    ASSERT_TRUE(client.connect(&error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(client.databaseNames(&error), QStringList{QStringLiteral("one")});
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    EXPECT_TRUE(server.failures().empty());
}

TEST_F(CatalogRecords, MakeStatementsThatAServerTakesAndThatChangeNothingYet)
{
    const auto columns = read<MSSQLColumnRecord>("Child");
    const QString schema = QStringLiteral("records");
    const QString child = QStringLiteral("Child");
    const auto client = connectedClient(settings(SampleServerFixture::shared().port()));
    KNError error;
    client->executeNonQuery(MSSQLStatementTemplate::insert(schema, child, columns), &error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    client->executeNonQuery(MSSQLStatementTemplate::update(schema, child, columns), &error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    const auto rows = client->executeQuery(MSSQLStatementTemplate::select(schema, child, columns), &error);
    ASSERT_TRUE(rows) << error.localizedDescription().toStdString();
    EXPECT_EQ(rows->columnNames().size(), columns.size());
    ASSERT_TRUE(rows->next());
    EXPECT_EQ(rows->numberForColumnIndex(2).toInt64(), 7); // the default, which the update has left
    const auto result = client->executeQuery(
        MSSQLStatementTemplate::execute(schema, QStringLiteral("Run"), read<MSSQLParameterRecord>("Run")),
        &error);
    ASSERT_TRUE(result && result->next()) << error.localizedDescription().toStdString();
    EXPECT_EQ(result->numberForColumn(QStringLiteral("@count")).toInt64(), 1);
}
