#include "VantorMSSQL/Wire/WireTest.h"

#include "SQL/KNQuerySplitter.h"
#include "Support/HostileServerBytes.h"
#include "Support/TestCertificates.h"

#include <chrono>
#include <thread>

namespace WireTest {

std::shared_ptr<MSSQLDatabaseConnectionDetails> settings(quint16 port)
{
    auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(port));
    details->setUsername(QString::fromLatin1(SampleServerFixture::User));
    details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    return details;
}

std::shared_ptr<MSSQLDatabaseConnectionDetails> encryptedSettings(quint16 port)
{
    auto details = settings(port);
    details->setSessionParameters({{QStringLiteral("encryption"), QStringLiteral("require")},
                                   {QStringLiteral("trustedCertificateFile"),
                                    QString::fromStdString(TestCertificates::shared().authority())}});
    return details;
}

std::shared_ptr<MSSQLDatabaseConnectionDetails> sharedSettings(Protection protection)
{
    if (protection == Protection::Clear)
        return settings(SampleServerFixture::shared().port());
    static const SampleServerFixture server({TestCertificates::shared().usual().arguments("require"), {}});
    return encryptedSettings(server.port());
}

std::string protectionName(const testing::TestParamInfo<Protection> &info)
{
    return info.param == Protection::Clear ? "InClear" : "Encrypted";
}

std::unique_ptr<MSSQLClient> connectedClient()
{
    return connectedClient(settings(SampleServerFixture::shared().port()));
}

std::unique_ptr<MSSQLClient> connectedClient(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &settings,
                                             MSSQLCancellation::Patience patience)
{
    auto client = std::make_unique<MSSQLClient>(settings, patience);
    KNError error;
    EXPECT_TRUE(client->connect(&error)) << error.localizedDescription().toStdString();
    return client;
}

QList<KNDatabaseResultSetPtr> run(MSSQLClient &client, const QString &sql, KNError *error)
{
    KNResultSetHolder holder;
    KNError unexpected;
    client.executeQueryDetails({{sql, {0, sql.size()}, 0}}, holder, {}, error ? error : &unexpected);
    EXPECT_FALSE(unexpected) << unexpected.localizedDescription().toStdString();
    return holder.resultSets();
}

KNError runScript(VantorDatabaseClient &client, const QString &script)
{
    const auto splitter = client.databaseConnectionDetails().createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    KNResultSetHolder holder;
    KNError error;
    client.executeQueryDetails(splitter->doSplitQuery(script), holder, {}, &error);
    return error ? error : holder.failure();
}

KNValue scalar(MSSQLClient &client, const QString &sql)
{
    KNError error;
    const auto resultSet = client.executeQuery(sql, &error);
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    if (!resultSet || !resultSet->next())
        return KNValue(QStringLiteral("no row"));
    return resultSet->objectForColumnIndex(0);
}

QStringList messageTexts(const QList<KNDatabaseResultSetPtr> &resultSets)
{
    QStringList texts;
    for (const KNDatabaseResultSetPtr &resultSet : resultSets) {
        const auto messages = resultSet->serverMessages();
        for (const DatabaseMessage &message : messages)
            texts.append(message.msgtext);
    }
    return texts;
}

HostileServer::Script afterLogin(const HostileServer::Script &steps)
{
    using namespace HostileServerBytes;
    const HostileServer::Script configured = {HostileServer::expect(BatchPacket),
                                              HostileServer::send(packet(done())),
                                              HostileServer::expect(BatchPacket)};
    return HostileServer::joined(HostileServer::acceptedLogin(), HostileServer::joined(configured, steps));
}

bool waitFor(const std::function<bool()> &condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace WireTest
