#include "Foundation/KNAssert.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"
#include "SQL/KNQuerySplitter.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

MSSQLDatabaseConnectionDetails *fill(MSSQLDatabaseConnectionDetails *details)
{
    details->setConnectionId(QStringLiteral("id"));
    details->setAlias(QStringLiteral("alias"));
    details->setUsername(QStringLiteral("alice"));
    details->setPassword(QStringLiteral("secret"));
    details->setHost(QStringLiteral("srv"));
    details->setPort(1500);
    return details;
}

struct Address
{
    QString host;
    quint16 port = 0;
    friend bool operator==(const Address &, const Address &) = default;
};

Address split(const QString &server, quint16 port = 0)
{
    Address address{QString(), port};
    VantorDBCPtr(new MSSQLDatabaseConnectionDetails)
        ->getHostAndPortForServer(server, &address.port, &address.host);
    return address;
}

} // namespace

TEST(ConnectionDetails, ACopyHoldsEverythingThatBelongsToTheConnection)
{
    MSSQLDatabaseConnectionDetails details;
    fill(&details);
    details.setDatabase(QStringLiteral("shop"));
    details.setFederationName(QStringLiteral("f"));
    details.setFederationStatement(QStringLiteral("USE FEDERATION"));
    details.setDistributionName(QStringLiteral("d"));
    details.setDistributionValue(QStringLiteral("1"));
    details.setTdsVersion(7);
    details.setUseNTLMv2(true);
    details.setSessionParameters({{QStringLiteral("loginTimeout"), 3}});
    const auto copy = std::dynamic_pointer_cast<MSSQLDatabaseConnectionDetails>(details.copy());
    ASSERT_TRUE(copy);
    EXPECT_TRUE(details.isEqualToDatabaseConnectionDetails(copy.get()));
    EXPECT_EQ(copy->alias(), QStringLiteral("alias"));
    EXPECT_EQ(copy->database(), QStringLiteral("shop"));
    EXPECT_EQ(copy->federationName(), QStringLiteral("f"));
    EXPECT_EQ(copy->distributionName(), QStringLiteral("d"));
    EXPECT_EQ(copy->distributionValue(), QStringLiteral("1"));
    EXPECT_EQ(copy->tdsVersion(), 7);
    EXPECT_EQ(copy->useNTLMv2(), true);
    EXPECT_EQ(copy->loginTimeout(), 3);
}

TEST(ConnectionDetails, EncryptionIsCopiedButIgnoredByComparison)
{
    MSSQLDatabaseConnectionDetails plain;
    MSSQLDatabaseConnectionDetails encrypted;
    fill(&plain);
    fill(&encrypted);
    encrypted.setSessionParameters({{QStringLiteral("encryption"), QStringLiteral("require")},
                                    {QStringLiteral("checkHostName"), false}});
    EXPECT_TRUE(plain.isEqualToDatabaseConnectionDetails(&encrypted));
    EXPECT_EQ(plain.description(), encrypted.description());
    const auto copy = std::dynamic_pointer_cast<MSSQLDatabaseConnectionDetails>(encrypted.copy());
    KNError error;
    const auto encryption = copy->encryption(&error);
    ASSERT_TRUE(encryption);
    EXPECT_EQ(encryption->mode, MSSQLEncryption::Mode::Require);
    EXPECT_FALSE(encryption->checksHostName);
}

TEST(ConnectionDetails, ACopyStillHasToProbeWhenItsOriginalHas)
{
    const MSSQLDatabaseConnectionDetails details;
    const auto copy = std::dynamic_pointer_cast<MSSQLDatabaseConnectionDetails>(details.copy());
    EXPECT_FALSE(copy->tdsVersion().has_value());
    EXPECT_FALSE(copy->useNTLMv2().has_value());
}

TEST(ConnectionDetails, DescribesItselfWithTwoAtSignsAndWithoutThePassword)
{
    MSSQLDatabaseConnectionDetails details;
    fill(&details);
    EXPECT_EQ(details.description(), QStringLiteral("alice@@srv:1500:(null)"));
    details.setDatabase(QStringLiteral("shop"));
    details.setFederationStatement(QStringLiteral("USE X"));
    EXPECT_EQ(details.description(), QStringLiteral("alice@@srv:1500 - shop:USE X"));
}

TEST(ConnectionDetails, AMissingDatabaseEqualsAnyOther)
{
    MSSQLDatabaseConnectionDetails left;
    MSSQLDatabaseConnectionDetails right;
    fill(&left);
    fill(&right);
    right.setDatabase(QStringLiteral("master"));
    EXPECT_TRUE(left.isEqualToDatabaseConnectionDetails(&right));
    left.setDatabase(QStringLiteral("model"));
    EXPECT_FALSE(left.isEqualToDatabaseConnectionDetails(&right));
}

TEST(ConnectionDetails, AMissingFederationStatementEqualsAnyOther)
{
    MSSQLDatabaseConnectionDetails left;
    MSSQLDatabaseConnectionDetails right;
    fill(&left);
    fill(&right);
    right.setFederationStatement(QStringLiteral("USE FEDERATION a"));
    EXPECT_TRUE(left.isEqualToDatabaseConnectionDetails(&right));
    left.setFederationStatement(QStringLiteral("USE FEDERATION b"));
    EXPECT_FALSE(left.isEqualToDatabaseConnectionDetails(&right));
}

TEST(ConnectionDetails, TwoMissingIdentitiesAreNotEqual)
{
    MSSQLDatabaseConnectionDetails left;
    MSSQLDatabaseConnectionDetails right;
    fill(&left)->setConnectionId(QString());
    fill(&right)->setConnectionId(QString());
    EXPECT_FALSE(left.isEqualToDatabaseConnectionDetails(&right));
    EXPECT_FALSE(left.isEqualToDatabaseConnectionDetails(nullptr));
    fill(&left);
    fill(&right)->setPort(1);
    EXPECT_FALSE(left.isEqualToDatabaseConnectionDetails(&right));
}

TEST(ConnectionDetails, ReturnsDetectedLoginSettings)
{
    MSSQLDatabaseConnectionDetails details;
    EXPECT_EQ(details.connectedWithDetails(),
              (QVariantMap{{QStringLiteral("TDS"), QVariant()}, {QStringLiteral("NTLMv2"), QVariant()}}));
    details.setTdsVersion(8);
    details.setUseNTLMv2(false);
    EXPECT_EQ(details.connectedWithDetails(),
              (QVariantMap{{QStringLiteral("TDS"), 8}, {QStringLiteral("NTLMv2"), false}}));
}

TEST(ConnectionDetails, SplitsHostAndPort)
{
    EXPECT_EQ(split(QStringLiteral("srv")), (Address{QStringLiteral("srv"), 0}));
    EXPECT_EQ(split(QStringLiteral("srv"), 7), (Address{QStringLiteral("srv"), 7}));
    EXPECT_EQ(split(QStringLiteral("srv:1500")), (Address{QStringLiteral("srv"), 1500}));
    EXPECT_EQ(split(QStringLiteral("srv,1500")), (Address{QStringLiteral("srv"), 1500}));
    EXPECT_EQ(split(QStringLiteral("[::1]:1500")), (Address{QStringLiteral("::1"), 1500}));
    EXPECT_EQ(split(QStringLiteral("::1")), (Address{QStringLiteral("::1"), 0}));
    EXPECT_EQ(split(QStringLiteral("srv,99999"), 7), (Address{QStringLiteral("srv"), 7}));
}

TEST(ConnectionDetails, KeywordsAreSorted)
{
    const QStringList &keywords = MSSQLDatabaseConnectionDetails().keywords();
    EXPECT_GT(keywords.size(), 180);
    EXPECT_TRUE(std::is_sorted(keywords.begin(), keywords.end(), [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    }));
    EXPECT_TRUE(keywords.contains(QStringLiteral("SELECT"), Qt::CaseInsensitive));
    EXPECT_TRUE(MSSQLDatabaseConnectionDetails::sqlFunctions().contains(QStringLiteral("GETDATE"),
                                                                        Qt::CaseInsensitive));
    const QStringList &both = MSSQLDatabaseConnectionDetails::functionsAndKeywords();
    for (const QString &word : keywords)
        EXPECT_EQ(std::count_if(both.begin(), both.end(),
                                [&](const QString &w) { return w.compare(word, Qt::CaseInsensitive) == 0; }),
                  1)
            << word.toStdString();
}

TEST(ServerText, IsTheAddressWithPortOrInstance)
{
    const auto text = [](const char *host) {
        return MSSQLClient::serverTextForHost(QString::fromLatin1(host));
    };
    EXPECT_EQ(text("127.0.0.1"), QStringLiteral("127.0.0.1"));
    EXPECT_EQ(text("127.0.0.1,1500"), QStringLiteral("127.0.0.1:1500"));
    EXPECT_EQ(text("127.0.0.1:1500"), QStringLiteral("127.0.0.1:1500"));
    EXPECT_EQ(text("127.0.0.1\\inst"), QStringLiteral("127.0.0.1\\inst"));
    EXPECT_EQ(text("127.0.0.1\\inst:1500"), QStringLiteral("127.0.0.1:1500\\inst"));
    EXPECT_EQ(text("127.0.0.1\\inst,1500"), QStringLiteral("127.0.0.1:1500\\inst"));
    EXPECT_EQ(text("127.0.0.1:1500\\inst"), QStringLiteral("127.0.0.1:1500\\inst"));
    EXPECT_EQ(text("localhost,1500"), QStringLiteral("127.0.0.1:1500"));
    EXPECT_EQ(text("::1"), QStringLiteral("[::1]"));
    EXPECT_EQ(text("[::1],1500"), QStringLiteral("[::1]:1500"));
}

TEST(AzureUserName, IsCompletedWithTheServersFirstLabel)
{
    const auto name = [](const char *user, const char *host) {
        return MSSQLClient::azureUserName(QString::fromLatin1(user), QString::fromLatin1(host));
    };
    EXPECT_EQ(name("admin", "myserver.database.windows.net"), QStringLiteral("admin@myserver"));
    EXPECT_EQ(name("admin", "MyServer.Database.Secure.Windows.Net,1433"), QStringLiteral("admin@MyServer"));
    EXPECT_TRUE(name("admin@myserver", "myserver.database.windows.net").isNull());
    EXPECT_TRUE(name("admin", "srv").isNull());
    EXPECT_TRUE(name("admin", "database.windows.net.example").isNull());
}

namespace {

class OtherSettings : public VantorDBC
{
public:
    QVariantMap sessionParameters() const override { return {}; }
    void setSessionParameters(const QVariantMap &) override {}
    quint16 defaultPort() const override { return 0; }
    VantorDBCPtr copy() const override { return nullptr; }
    std::unique_ptr<VantorDatabaseClient> createNewClient() const override { return nullptr; }
    std::unique_ptr<KNQuerySplitter> createQuerySplitter() const override { return nullptr; }
    std::shared_ptr<DatabaseTreeEntryServerRoot> createRootDatabaseTreeNode() const override
    {
        return nullptr;
    }
    std::unique_ptr<KNSystemDatabaseQueryHelper> queryLoader() const override { return nullptr; }
    QString description() const override { return {}; }
    QVariantMap connectedWithDetails() const override { return {}; }
    void setConnectedWithDetails(const QVariantMap &) override {}
    const QStringList &keywords() const override
    {
        static const QStringList none;
        return none;
    }
    const QStringList &functions() const override { return keywords(); }
};

} // namespace

TEST(Client, SettingsOfAnotherKindAreAProgrammingError)
{
    try {
        MSSQLClient client(std::make_shared<OtherSettings>());
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Invalid class."));
    }
}

TEST(Client, MissingSettingsOrUserNameAreAProgrammingError)
{
    KNError error;
    MSSQLClient without(nullptr);
    EXPECT_THROW(without.connect(&error, false, 8), KNAssertionFailure);
    MSSQLClient nameless(std::make_shared<MSSQLDatabaseConnectionDetails>());
    try {
        nameless.connect(&error, false, 8);
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Database connection username cannot be nil."));
    }
}

TEST(ConnectionDetails, AreOfAnotherServerAtTheEndOfAnotherTunnel)
{
    MSSQLDatabaseConnectionDetails details;
    details.setUsername(QStringLiteral("sa"));
    details.setHost(QStringLiteral("localhost"));
    const QString description = details.description();
    const VantorDBCPtr direct = details.copy();
    EXPECT_TRUE(details.opensSameSession(*direct));

    details.setSSHTunnelModel({QStringLiteral("gate"), 22, QStringLiteral("me"), {}});
    EXPECT_EQ(details.description(), description + QStringLiteral(" through me@gate:22"));
    EXPECT_FALSE(details.opensSameSession(*direct));
    EXPECT_TRUE(details.opensSameSession(*details.copy()));
}

TEST(ConnectionDetails, TakeSessionParametersThatMakeNoSenseForTheirDefaults)
{
    MSSQLDatabaseConnectionDetails details;
    EXPECT_EQ(details.queryTimeout(), 0);
    EXPECT_FALSE(details.isReadOnlyIntended());
    EXPECT_TRUE(details.initialStatements().isEmpty());
    details.setSessionParameters({{QStringLiteral("queryTimeout"), -5},
                                  {QStringLiteral("applicationIntent"), QStringLiteral("perhaps")}});
    EXPECT_EQ(details.queryTimeout(), 0);
    EXPECT_FALSE(details.isReadOnlyIntended());
}
