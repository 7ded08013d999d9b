#include "Database/KNServerCertificate.h"
#include "Foundation/KNFormat.h"
#include "Support/HostileServerRelay.h"
#include "Support/TestCertificates.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace WireTest;

namespace {

TestCertificates &certificates()
{
    return TestCertificates::shared();
}

SampleServerFixture::Options serving(const TestCertificates::Files &files, const char *policy = "require")
{
    return {files.arguments(policy), {}};
}

/// A server that lets nobody in without encryption, with the usual certificate.
const SampleServerFixture &requiringServer()
{
    static const SampleServerFixture server(serving(certificates().usual()));
    return server;
}

/// Settings with some of their session parameters changed.
std::shared_ptr<MSSQLDatabaseConnectionDetails>
withParameters(std::shared_ptr<MSSQLDatabaseConnectionDetails> details, const QVariantMap &changes)
{
    QVariantMap parameters = details->sessionParameters();
    for (auto change = changes.begin(); change != changes.end(); ++change)
        parameters.insert(change.key(), change.value());
    details->setSessionParameters(parameters);
    return details;
}

std::shared_ptr<MSSQLDatabaseConnectionDetails>
withHostName(std::shared_ptr<MSSQLDatabaseConnectionDetails> details, const char *name)
{
    details->setHost(details->host().replace(QStringLiteral("127.0.0.1"), QString::fromLatin1(name)));
    return details;
}

/// With what text connecting fails; "connected" when it does not.
std::string failureOf(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details)
{
    MSSQLClient client(details);
    KNError error;
    if (client.connect(&error))
        return "connected";
    EXPECT_EQ(error.domain(), QStringLiteral("com.quorvex.mssql.databaseConnection"));
    return error.localizedDescription().toStdString();
}

bool contains(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

testing::AssertionResult says(const std::string &text, std::initializer_list<const char *> parts)
{
    for (const char *part : parts) {
        if (!contains(text, part))
            return testing::AssertionFailure() << "no \"" << part << "\" in: " << text;
    }
    return testing::AssertionSuccess();
}

constexpr const char *Connected = "connected";

QVariantMap parameter(const char *name, const QVariant &value)
{
    return {{QString::fromLatin1(name), value}};
}

QVariantMap encryption(const char *mode)
{
    return parameter("encryption", QString::fromLatin1(mode));
}

} // namespace

class EncryptedVersions : public testing::TestWithParam<int>
{
};

TEST_P(EncryptedVersions, RunBatchesOfAnySize)
{
    MSSQLClient client(encryptedSettings(requiringServer().port()));
    KNError error;
    ASSERT_TRUE(client.tryConnect(GetParam(), false, &error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(scalar(client, QStringLiteral("SELECT N'ж'")), KNValue(QStringLiteral("ж")));
    const auto results = run(client, QStringLiteral("SELECT * FROM generate_rows(50000)"));
    EXPECT_EQ(results.first()->rows().rowCount(), 50000);
    EXPECT_EQ(scalar(client, QStringLiteral("SELECT REPLICATE(CAST('x' AS varchar(max)), 10000000)")),
              KNValue(QString(10'000'000, QLatin1Char('x'))));
    const QString longText(1'000'000, QChar(0x436));
    EXPECT_EQ(scalar(client, KNFormat("SELECT N'%@'", longText)), KNValue(longText));
    EXPECT_EQ(scalar(client, QStringLiteral("SELECT 1")), KNValue(1));
}

INSTANTIATE_TEST_SUITE_P(RowsOfTheProtocolTable, EncryptedVersions, testing::Range(0, 4));

TEST(Encryption, IsAcceptedFromAServerThatLeavesItToTheClient)
{
    const SampleServerFixture server(serving(certificates().usual(), "request"));
    EXPECT_EQ(failureOf(encryptedSettings(server.port())), Connected);
    EXPECT_EQ(failureOf(settings(server.port())), Connected);
    EXPECT_EQ(failureOf(withParameters(settings(server.port()), encryption("off"))), Connected);
}

TEST(Encryption, IsTakenByDefaultFromAServerThatRequiresIt)
{
    EXPECT_EQ(failureOf(settings(requiringServer().port())), Connected);
}

TEST(Encryption, WorksForWindowsAccounts)
{
    for (const char *mode : {"request", "require"}) {
        for (const char *policy : {"request", "require"}) {
            const SampleServerFixture server(serving(certificates().usual(), policy));
            const auto details = withParameters(encryptedSettings(server.port()), encryption(mode));
            details->setUsername(QStringLiteral("CORP\\sa"));
            EXPECT_EQ(failureOf(details), Connected) << mode << ' ' << policy;
        }
    }
}

TEST(Encryption, OffFailsOnServerThatRequiresEncryption)
{
    EXPECT_TRUE(says(failureOf(withParameters(settings(requiringServer().port()), encryption("off"))),
                     {"requires encryption", "request or require"}));
}

TEST(Encryption, RequiredFailsOnServerWithoutEncryption)
{
    EXPECT_TRUE(says(failureOf(encryptedSettings(SampleServerFixture::shared().port())),
                     {"does not offer encryption", "Turn it on"}));
}

TEST(Encryption, AWrongPasswordIsStillCalledThat)
{
    const auto details = encryptedSettings(requiringServer().port());
    details->setPassword(QStringLiteral("wrong"));
    EXPECT_EQ(failureOf(details), "Login failed for user 'sa'. (Msg 18456, Level 14).");
}

TEST(Encryption, ProbesForTheVersionOfAnOlderServer)
{
    auto options = serving(certificates().usual());
    options.arguments.insert(options.arguments.end(), {"--tds", "7.1"});
    const SampleServerFixture server(options);
    EXPECT_EQ(failureOf(encryptedSettings(server.port())), Connected);
}

TEST(Encryption, SettingsWithoutSenseAreRefused)
{
    const auto details = [&](const QVariantMap &changes) {
        return withParameters(encryptedSettings(requiringServer().port()), changes);
    };
    EXPECT_TRUE(says(failureOf(details(encryption("perhaps"))), {"\"perhaps\" is no kind of encryption"}));
    EXPECT_TRUE(says(failureOf(details(parameter("trustServerCertificate", true))), {"not both"}));
}

TEST(Certificate, OfAnAuthorityThatIsNotTrustedIsRefused)
{
    const auto trusting = [](const QString &file) {
        return withParameters(encryptedSettings(requiringServer().port()),
                              parameter("trustedCertificateFile", file));
    };
    const TestCertificates others("Another authority");
    for (const QString &file : {QString::fromStdString(others.authority()), QString()})
        EXPECT_TRUE(says(failureOf(trusting(file)),
                         {"signed by an authority that is not trusted here: CN=Test authority",
                          "name it as the trusted certificate file"}));
    const TestCertificates ofTheSameName;
    EXPECT_TRUE(says(failureOf(trusting(QString::fromStdString(ofTheSameName.authority()))),
                     {"names the authority CN=Test authority, and is not signed by the one"}));
}

TEST(Certificate, OfAnyIssuerIsAcceptedIfTrusted)
{
    const auto details = withParameters(settings(requiringServer().port()),
                                        {{QStringLiteral("encryption"), QStringLiteral("require")},
                                         {QStringLiteral("trustServerCertificate"), true}});
    EXPECT_EQ(failureOf(details), Connected);
}

TEST(Certificate, ThatSignedItselfIsTrustedWhenItIsNamed)
{
    const auto files = certificates().issue({{}, {"127.0.0.1"}, -1, 30, true});
    const SampleServerFixture server(serving(files));
    const auto details = encryptedSettings(server.port());
    EXPECT_TRUE(says(failureOf(details), {"signed by an authority that is not trusted"}));
    EXPECT_EQ(failureOf(withParameters(
                  details, parameter("trustedCertificateFile", QString::fromStdString(files.certificate)))),
              Connected);
}

TEST(Certificate, ThatHasExpiredIsRefused)
{
    const SampleServerFixture server(serving(certificates().issue({{"localhost"}, {"127.0.0.1"}, -20, -10})));
    EXPECT_TRUE(says(failureOf(encryptedSettings(server.port())),
                     {"certificate was valid until ", " UTC", "renewed"}));
}

TEST(Certificate, ThatIsNotYetValidIsRefused)
{
    const SampleServerFixture server(serving(certificates().issue({{"localhost"}, {"127.0.0.1"}, 10, 20})));
    EXPECT_TRUE(says(failureOf(encryptedSettings(server.port())), {"is not valid before ", "clocks"}));
}

TEST(Certificate, MustBeForTheNameThatTheUserTyped)
{
    const SampleServerFixture named(serving(certificates().issue({{"localhost"}, {}})));
    EXPECT_EQ(failureOf(withHostName(encryptedSettings(named.port()), "localhost")), Connected);
    EXPECT_EQ(failureOf(withHostName(encryptedSettings(named.port()), "LOCALHOST")), Connected);
    EXPECT_TRUE(says(failureOf(encryptedSettings(named.port())),
                     {"certificate is for localhost, and not for \"127.0.0.1\"", "check of the host name"}));

    const SampleServerFixture addressed(serving(certificates().issue({{}, {"127.0.0.1"}})));
    EXPECT_EQ(failureOf(encryptedSettings(addressed.port())), Connected);
    EXPECT_TRUE(says(failureOf(withHostName(encryptedSettings(addressed.port()), "localhost")),
                     {"certificate is for 127.0.0.1, and not for \"localhost\""}));
}

TEST(Certificate, OfAnotherHostIsAcceptedWithoutHostCheck)
{
    const SampleServerFixture server(serving(certificates().issue({{"sql.example", "db.example"}, {}})));
    const auto details = withHostName(encryptedSettings(server.port()), "localhost");
    EXPECT_TRUE(
        says(failureOf(details), {"certificate is for sql.example, db.example, and not for \"localhost\""}));
    EXPECT_EQ(failureOf(withParameters(details, parameter("checkHostName", false))), Connected);
}

/// The rules of RFC 6125: whole names without regard to case, a wildcard for one label, no address among
/// names.
TEST(Certificate, WithANameLikeTheTypedOneIsRefused)
{
    struct Case
    {
        const char *typed;
        std::vector<std::string> names;
        bool isFor;
    };
    const Case cases[] = {
        {"localhost", {"localhost"}, true},
        {"localhost", {"LocalHost"}, true},
        {"localhost", {"sql.example", "localhost"}, true},
        {"localhost", {"*"}, false},
        {"localhost", {"*host"}, false},
        {"localhost", {"local*"}, false},
        {"localhost", {"*.localhost"}, false},
        {"localhost", {"localhost.example"}, false},
        {"localhost", {"xlocalhost"}, false},
        {"localhost", {"localhos"}, false},
        {"127.0.0.1", {"127.0.0.1.example"}, false},
        {"127.0.0.1", {"*.0.0.1"}, false},
    };
    for (const Case &one : cases) {
        SCOPED_TRACE(one.names.back());
        const SampleServerFixture server(serving(certificates().issue({one.names, {}})));
        const std::string failure = failureOf(withHostName(encryptedSettings(server.port()), one.typed));
        EXPECT_EQ(failure == Connected, one.isFor) << failure;
    }
}

TEST(Certificate, ForClientsOnlyIsRefused)
{
    for (const bool isSelfSigned : {false, true}) {
        const auto files = certificates().issue({{}, {"127.0.0.1"}, -1, 30, isSelfSigned, true});
        const SampleServerFixture server(serving(files));
        const auto details = encryptedSettings(server.port());
        if (isSelfSigned)
            withParameters(details,
                           parameter("trustedCertificateFile", QString::fromStdString(files.certificate)));
        for (const bool checksHostName : {true, false})
            EXPECT_TRUE(says(failureOf(withParameters(details, parameter("checkHostName", checksHostName))),
                             {"does not include server authentication"}));
    }
}

TEST(Certificate, IsCheckedBeforeAndInTheLoginThatFollows)
{
    // The server that answers the check is not the one that answers the login.
    const SampleServerFixture forServers(serving(certificates().usual()));
    const SampleServerFixture forClients(
        serving(certificates().issue({{}, {"127.0.0.1"}, -1, 30, false, true})));
    HostileServerRelay relay(forServers.port(), HostileServerRelay::Fault::None, 0);
    const auto details = encryptedSettings(relay.port());
    EXPECT_EQ(failureOf(details), Connected);
    relay.leadTo(forClients.port());
    EXPECT_NE(failureOf(details), Connected);
}

TEST(Certificate, ThatIsNamedIsVerifiedWhereEncryptionIsOnlyRequested)
{
    const SampleServerFixture server(serving(certificates().issue({{"sql.example"}, {}}), "request"));
    const auto details = withParameters(encryptedSettings(server.port()), encryption("request"));
    EXPECT_TRUE(says(failureOf(details), {"certificate is for sql.example"}));
    EXPECT_EQ(failureOf(withParameters(details, parameter("checkHostName", false))), Connected);
}

TEST(TrustedCertificateFile, ThatCannotBeUsedIsNamed)
{
    const auto trusting = [](const std::string &path) {
        return withParameters(encryptedSettings(requiringServer().port()),
                              parameter("trustedCertificateFile", QString::fromStdString(path)));
    };
    EXPECT_TRUE(says(failureOf(trusting("/nowhere/ca.pem")),
                     {"\"/nowhere/ca.pem\" could not be read: No such file", "path and permissions"}));
    EXPECT_TRUE(says(failureOf(trusting("/")), {"\"/\" could not be read"}));
    const std::string empty = certificates().write("empty.pem", "nothing of the kind\n");
    EXPECT_TRUE(says(failureOf(trusting(empty)), {"holds no certificate", "PEM"}));
}

TEST(TrustedCertificateFile, MayHaveAnyName)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a  b;c#d'\"é ") + QString(100, QLatin1Char('x')));
    ASSERT_TRUE(QFile::copy(QString::fromStdString(certificates().authority()), path));
    EXPECT_EQ(failureOf(withParameters(encryptedSettings(requiringServer().port()),
                                       parameter("trustedCertificateFile", path))),
              Connected);
}

TEST(LoginSettings, LeaveNothingBehindInTheFolderForTemporaryFiles)
{
    const QTemporaryDir folder;
    const auto accepted = encryptedSettings(requiringServer().port());
    const auto refused = encryptedSettings(SampleServerFixture::shared().port());
    qputenv("TMPDIR", folder.path().toLocal8Bit());
    EXPECT_EQ(failureOf(accepted), Connected);
    EXPECT_NE(failureOf(refused), Connected);
    EXPECT_NE(failureOf(settings(1)), Connected);
    qputenv("TMPDIR", "/proc"); // where nobody can write
    const std::string failure = failureOf(accepted);
    qunsetenv("TMPDIR");
    EXPECT_TRUE(says(failure, {"could not be written to the folder for temporary files"}));
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(LoginSettings, AreNotChangedByTheUsersOwnForOtherPrograms)
{
    const QTemporaryDir home;
    const QByteArray file = QFile::encodeName(home.filePath(QStringLiteral(".freetds.conf")));
    QFile conf(QFile::decodeName(file));
    ASSERT_TRUE(conf.open(QIODevice::WriteOnly));
    conf.write("[global]\nencryption = off\nport = 1\ntds version = 7.0\ntext size = 10\n");
    conf.close();
    const QByteArray trace = QFile::encodeName(home.filePath(QStringLiteral("trace")));
    const QByteArray oldHome = qgetenv("HOME");
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("FREETDSCONF", file);
    qputenv("TDSVER", "5.0");
    qputenv("TDSPORT", "1");
    qputenv("TDSHOST", "127.0.0.9");
    qputenv("TDSDUMP", trace);
    qputenv("TDSDUMPCONFIG", trace);
    EXPECT_EQ(failureOf(encryptedSettings(requiringServer().port())), Connected);
    EXPECT_EQ(failureOf(settings(SampleServerFixture::shared().port())), Connected);
    qputenv("HOME", oldHome);
    qunsetenv("FREETDSCONF");
    EXPECT_FALSE(QFile::exists(QFile::decodeName(trace))) << "a trace would hold the password";
}

namespace {

VantorEncryption measured(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details)
{
    MSSQLClient client(details);
    KNError error;
    EXPECT_TRUE(client.connect(&error)) << error.localizedDescription().toStdString();
    return client.encryption();
}

/// The SHA-256 hash of the certificate in a PEM file, in hexadecimal.
QByteArray hashOf(const std::string &file)
{
    QFile pem(QString::fromStdString(file));
    EXPECT_TRUE(pem.open(QIODevice::ReadOnly));
    QByteArray body;
    while (!pem.atEnd()) {
        const QByteArray line = pem.readLine();
        if (!line.startsWith("-----"))
            body += line.trimmed();
    }
    return QCryptographicHash::hash(QByteArray::fromBase64(body), QCryptographicHash::Sha256).toHex();
}

KNError errorOf(const std::shared_ptr<MSSQLDatabaseConnectionDetails> &details)
{
    MSSQLClient client(details);
    KNError error;
    EXPECT_FALSE(client.connect(&error));
    return error;
}

} // namespace

TEST(MeasuredEncryption, IsThatOfTheSession)
{
    const SampleServerFixture &clear = SampleServerFixture::shared();
    EXPECT_EQ(measured(settings(clear.port())), VantorEncryption::None);
    EXPECT_EQ(measured(withParameters(settings(clear.port()), encryption("off"))), VantorEncryption::None);
    const SampleServerFixture requesting(serving(certificates().usual(), "request"));
    EXPECT_EQ(measured(settings(requesting.port())), VantorEncryption::LoginOnly);
    EXPECT_EQ(measured(withParameters(settings(requesting.port()), encryption("off"))),
              VantorEncryption::None);
    EXPECT_EQ(measured(settings(requiringServer().port())), VantorEncryption::Unverified);
    EXPECT_EQ(measured(withParameters(settings(requiringServer().port()),
                                      {{QStringLiteral("encryption"), QStringLiteral("require")},
                                       {QStringLiteral("trustServerCertificate"), true}})),
              VantorEncryption::Unverified);
    EXPECT_EQ(measured(encryptedSettings(requiringServer().port())), VantorEncryption::Verified);
}

TEST(MeasuredEncryption, OfLongLoginTextsIsNotTakenForTLS)
{
    const SampleServerFixture &clear = SampleServerFixture::shared();
    const auto details = settings(clear.port());
    details->setDatabase(QStringLiteral("shop"));
    EXPECT_EQ(measured(details), VantorEncryption::None);
    const SampleServerFixture requesting(serving(certificates().usual(), "request"));
    const auto encrypted = settings(requesting.port());
    encrypted->setDatabase(QStringLiteral("shop"));
    EXPECT_EQ(measured(encrypted), VantorEncryption::LoginOnly);
}

TEST(PinnedCertificate, OfAFailedCheckIsAcceptedAloneFromThenOn)
{
    const auto files = certificates().issue({{}, {"127.0.0.1"}, -1, 30, true});
    const SampleServerFixture server(serving(files));
    const auto details = withParameters(settings(server.port()), encryption("require"));
    const auto certificate = KNServerCertificate::fromError(errorOf(details));
    ASSERT_TRUE(certificate);
    QByteArray fingerprint = certificate->fingerprint().toLatin1().toLower();
    fingerprint.replace(":", "").replace("\n", "");
    EXPECT_EQ(fingerprint, hashOf(files.certificate));
    EXPECT_FALSE(certificate->subject.isEmpty());
    EXPECT_EQ(certificate->issuer, certificate->subject); // it signed itself
    EXPECT_LT(certificate->validFrom, QDateTime::currentDateTimeUtc());
    EXPECT_GT(certificate->validUntil, QDateTime::currentDateTimeUtc().addDays(28));

    certificate->pinTo(*details);
    EXPECT_EQ(measured(details), VantorEncryption::Verified);

    const auto elsewhere = settings(requiringServer().port());
    elsewhere->setSessionParameters(details->sessionParameters());
    const KNError error = errorOf(elsewhere);
    EXPECT_TRUE(says(error.localizedDescription().toStdString(),
                     {"is not the one that is trusted for this connection"}));
    const auto other = KNServerCertificate::fromError(error);
    ASSERT_TRUE(other);
    EXPECT_NE(other->fingerprint(), certificate->fingerprint());
}

TEST(PinnedCertificate, OfAnotherHostCanBeTrusted)
{
    const SampleServerFixture server(serving(certificates().issue({{"sql.example"}, {}})));
    const auto details = encryptedSettings(server.port());
    const auto certificate = KNServerCertificate::fromError(errorOf(details));
    ASSERT_TRUE(certificate);
    EXPECT_EQ(certificate->issuer, QStringLiteral("CN=Test authority"));
    certificate->pinTo(*details);
    EXPECT_EQ(measured(details), VantorEncryption::Verified);
}

TEST(PinnedCertificate, IsNotOfferedForOneThatIsNotValidNow)
{
    const SampleServerFixture server(serving(certificates().issue({{"localhost"}, {"127.0.0.1"}, -20, -10})));
    EXPECT_FALSE(KNServerCertificate::fromError(errorOf(encryptedSettings(server.port()))));
}

TEST(PinnedCertificate, ThatIsDamagedIsAnError)
{
    EXPECT_TRUE(says(failureOf(withParameters(settings(requiringServer().port()),
                                              parameter("pinnedCertificate", QStringLiteral("no PEM")))),
                     {"is damaged"}));
}
