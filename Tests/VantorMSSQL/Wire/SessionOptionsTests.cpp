#include "Support/HostileServerRelay.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace {

std::unique_ptr<MSSQLClient> clientWith(const QVariantMap &parameters,
                                        quint16 port = SampleServerFixture::shared().port())
{
    auto details = WireTest::settings(port);
    details->setSessionParameters(parameters);
    return std::make_unique<MSSQLClient>(details);
}

/// The flags of the login's type (MS-TDS 2.2.6.4) in what a client said in clear; 0 without a login.
int typeFlagsOfLogin(const std::string &said)
{
    constexpr std::size_t HeaderSize = 8, TypeFlags = 26;
    constexpr char Login = 0x10;
    for (std::size_t at = 0; at + HeaderSize + TypeFlags < said.size();) {
        const auto byte = [&](std::size_t offset) { return static_cast<unsigned char>(said[at + offset]); };
        if (said[at] == Login)
            return byte(HeaderSize + TypeFlags);
        at += std::max(1, byte(2) << 8 | byte(3));
    }
    return 0;
}

int typeFlagsWith(const QVariantMap &parameters)
{
    const HostileServerRelay relay(SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0);
    KNError error;
    EXPECT_TRUE(clientWith(parameters, relay.port())->connect(&error))
        << error.localizedDescription().toStdString();
    return typeFlagsOfLogin(relay.saidByClient());
}

} // namespace

TEST(SessionOptions, InitialStatementsRunFirst)
{
    const auto client =
        clientWith({{QStringLiteral("initialStatements"),
                     QStringLiteral("CREATE TABLE #mine (a int)\nGO\nINSERT #mine VALUES (1)\n"
                                    "GO 2\nSELECT a FROM #mine SELECT 1")}});
    KNError error;
    ASSERT_TRUE(client->connect(&error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT COUNT(*) FROM #mine")).displayText(),
              QStringLiteral("2"));
}

TEST(SessionOptions, ThereIsNoConnectionWithoutItsInitialStatements)
{
    const auto client =
        clientWith({{QStringLiteral("initialStatements"), QStringLiteral("SELECT * FROM nowhere")}});
    KNError error;
    EXPECT_FALSE(client->connect(&error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("initial statements")));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("nowhere")));
    EXPECT_FALSE(client->isConnected());
}

TEST(SessionOptions, ABatchThatTakesLongerThanAllowedIsStoppedAndTheSessionLivesOn)
{
    const auto client = clientWith({{QStringLiteral("queryTimeout"), 1}});
    KNError error;
    ASSERT_TRUE(client->connect(&error));
    WireTest::run(*client, QStringLiteral("WAITFOR DELAY '00:10:00'"), &error);
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("1 second")))
        << error.localizedDescription().toStdString();
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT 7")).displayText(), QStringLiteral("7"));
}

TEST(SessionOptions, ABatchThatIsQuickEnoughIsNotStopped)
{
    const auto client = clientWith({{QStringLiteral("queryTimeout"), 3600}});
    KNError error;
    ASSERT_TRUE(client->connect(&error));
    EXPECT_EQ(WireTest::scalar(*client, QStringLiteral("SELECT 7")).displayText(), QStringLiteral("7"));
}

TEST(SessionOptions, TheApplicationsIntentIsInTheLogin)
{
    constexpr int ReadOnlyIntent = 0x20;
    const QVariant off = QStringLiteral("off");
    EXPECT_EQ(typeFlagsWith({{QStringLiteral("encryption"), off}}) & ReadOnlyIntent, 0);
    EXPECT_EQ(typeFlagsWith({{QStringLiteral("encryption"), off},
                             {QStringLiteral("applicationIntent"), QStringLiteral("readonly")}}) &
                  ReadOnlyIntent,
              ReadOnlyIntent);
}
