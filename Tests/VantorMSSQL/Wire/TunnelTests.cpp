#include "SSH/KNSSHCommand.h"
#include "SSH/KNSSHHostKey.h"
#include "SSH/KNSSHProcess.h"
#include "Support/SSHServerTest.h"
#include "Support/TestCertificates.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QFile>

namespace {

/// Connections through a real sshd that is known.
class Tunnelled : public SSHServerTest
{
protected:
    void acceptHostKey() const
    {
        KNError error;
        const auto key = KNSSHHostKey::ask(m_model, QDeadlineTimer(20000));
        ASSERT_TRUE(key && key->accept(&error)) << error.localizedDescription().toStdString();
    }
    std::shared_ptr<MSSQLDatabaseConnectionDetails>
    through(std::shared_ptr<MSSQLDatabaseConnectionDetails> details) const
    {
        details->setSSHTunnelModel(m_model);
        return details;
    }
    KNError errorOf(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details) const
    {
        KNError error;
        EXPECT_FALSE(MSSQLClient(through(details)).connect(&error));
        return error;
    }
};

} // namespace

TEST_F(Tunnelled, ConnectionsWorkAsOthersDo)
{
    acceptHostKey();
    const auto client =
        WireTest::connectedClient(through(WireTest::settings(SampleServerFixture::shared().port())));
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT 7")).displayText(), QStringLiteral("7"));
}

TEST_F(Tunnelled, ConnectionsAskForAnUnknownHostKeyAtOnce)
{
    const KNError error = errorOf(WireTest::settings(SampleServerFixture::shared().port()));
    const auto key = KNSSHHostKey::fromError(error);
    ASSERT_TRUE(key) << error.localizedDescription().toStdString();
    EXPECT_EQ(key->fingerprint(), m_server->fingerprint());
}

TEST_F(Tunnelled, CertificatesAreCheckedAgainstTheServersOwnName)
{
    acceptHostKey();
    TestCertificates &certificates = TestCertificates::shared();
    TestCertificates::Subject subject;
    subject.dnsNames = {"localhost"}; // but not 127.0.0.1, the near end of the tunnel
    const SampleServerFixture right({certificates.issue(subject).arguments("require"), {}});
    auto details = WireTest::encryptedSettings(right.port());
    details->setHost(QStringLiteral("localhost,%1").arg(right.port()));
    const auto client = WireTest::connectedClient(through(details));
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT 7")).displayText(), QStringLiteral("7"));

    subject.dnsNames = {"db.example"};
    subject.addresses = {"127.0.0.1"}; // the near end's, which must not count
    const SampleServerFixture wrong({certificates.issue(subject).arguments("require"), {}});
    details = WireTest::encryptedSettings(wrong.port());
    details->setHost(QStringLiteral("localhost,%1").arg(wrong.port()));
    const KNError error = errorOf(details);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("localhost")))
        << error.localizedDescription().toStdString();
}

TEST_F(Tunnelled, CertificatesOfAnUnknownAuthorityAreRefused)
{
    acceptHostKey();
    TestCertificates strangers("Strangers");
    const SampleServerFixture server({strangers.usual().arguments("require"), {}});
    EXPECT_FALSE(errorOf(WireTest::encryptedSettings(server.port())).localizedDescription().isEmpty());
}

TEST_F(Tunnelled, ConnectionsReportServerUnreachableFromSSHServer)
{
    acceptHostKey();
    auto details = WireTest::settings(1);
    const KNError error = errorOf(details);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("could not reach")))
        << error.localizedDescription().toStdString();
}

TEST_F(Tunnelled, InstancesNeedTheirPort)
{
    auto details = WireTest::settings(1433);
    details->setHost(QStringLiteral("db\\SQLEXPRESS"));
    EXPECT_TRUE(errorOf(details).localizedDescription().contains(QStringLiteral("server,port")));
}

TEST_F(Tunnelled, ALostConnectionIsMadeAgainThroughANewTunnel)
{
    acceptHostKey();
    const auto details = through(WireTest::settings(SampleServerFixture::shared().port()));
    const auto client = WireTest::connectedClient(details);
    m_server->stop();
    KNError error;
    WireTest::run(*client, QStringLiteral("SELECT 7"), &error);
    EXPECT_TRUE(error);
    m_server->start();
    error.clear();
    ASSERT_TRUE(client->connect(&error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT 7")).displayText(), QStringLiteral("7"));
}
