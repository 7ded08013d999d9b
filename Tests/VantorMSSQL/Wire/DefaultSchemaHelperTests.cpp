#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Support/HostileServerBytes.h"
#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;
using namespace HostileServerBytes;

namespace {

/// Accepts a login and answers the version query, then the question for the schema with these rows.
HostileServer::Script answering(const Bytes &rows)
{
    const auto answer = [](const Bytes &bytes) {
        return HostileServer::Script{HostileServer::expect(BatchPacket), HostileServer::send(packet(bytes))};
    };
    const Bytes version = HostileServerBytes::joined(
        {textColumn("version"), textRow("Microsoft SQL Server 2022"), done(DoneCount, 1)});
    HostileServer::Script script = HostileServer::acceptedLogin();
    // The session's settings, the version, the way back to the pool, the schema, the way back.
    for (const Bytes &bytes : {done(), version, done(), rows, done()})
        script = HostileServer::joined(script, answer(bytes));
    return script;
}

std::shared_ptr<MSSQLDatabaseConnectionDetails> settingsFor(const HostileServer &server)
{
    const auto details = settings(server.port());
    details->setTdsVersion(8);
    details->setUseNTLMv2(false);
    return details;
}

} // namespace

TEST(DefaultSchemaHelper, ReturnsUsersSchema)
{
    const auto details = settings(SampleServerFixture::shared().port());
    MSSQLDefaultSchemaHelper helper;
    EXPECT_EQ(helper.schemaForDBC(*details), QStringLiteral("dbo"));
}

TEST(DefaultSchemaHelper, TakesTheFirstSchemaThatIsNotEmpty)
{
    const HostileServer server(answering(HostileServerBytes::joined(
        {textColumn("schema"), textRow(""), textRow("sales"), textRow("other"), done(DoneCount, 3)})));
    MSSQLDefaultSchemaHelper helper;
    EXPECT_EQ(helper.schemaForDBC(*settingsFor(server)), QStringLiteral("sales"));
    EXPECT_TRUE(server.failures().empty());
}

TEST(DefaultSchemaHelper, EmptyResultIsCachedAsEmptySchema)
{
    const HostileServer server(answering(HostileServerBytes::joined({textColumn("schema"), done()})));
    const auto details = settingsFor(server);
    MSSQLDefaultSchemaHelper helper;
    EXPECT_EQ(helper.schemaForDBC(*details), QStringLiteral(""));
    EXPECT_EQ(helper.schemaForDBC(*details), QStringLiteral(""));
    EXPECT_EQ(server.connectionCount(), 2U); // the look whether it answers, and the login
}

TEST(DefaultSchemaHelper, ConnectionsShareByTheirDescription)
{
    SampleServerFixture server;
    const auto details = settings(server.port());
    MSSQLDefaultSchemaHelper helper;
    EXPECT_EQ(helper.schemaForDBC(*details), QStringLiteral("dbo"));
    server.kill();
    const auto alike = std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy());
    alike->setConnectionId(QStringLiteral("saved"));
    EXPECT_EQ(helper.schemaForDBC(*alike), QStringLiteral("dbo"));
}

TEST(DefaultSchemaHelper, UnreachableServerHasEmptySchema)
{
    quint16 port = 0;
    {
        const HostileServer closed(HostileServer::Script{});
        port = closed.port();
    }
    MSSQLDefaultSchemaHelper helper;
    const QString schema = helper.schemaForDBC(*settings(port));
    EXPECT_TRUE(schema.isEmpty());
    EXPECT_FALSE(schema.isNull());
}
