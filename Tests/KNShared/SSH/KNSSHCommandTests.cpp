#include "SSH/KNSSHCommand.h"
#include "SSH/KNSSHHostKey.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

KNSSHTunnelModel model()
{
    KNSSHTunnelModel made;
    made.host = QStringLiteral("gate.example");
    return made;
}

QStringList forward(const KNSSHTunnelModel &through, const QString &host = QStringLiteral("db"))
{
    return KNSSHCommand::toForward(through, 40000, host, 1433, 15);
}

QString argumentAfter(const QStringList &arguments, const char *name)
{
    return arguments.value(arguments.indexOf(QString::fromLatin1(name)) + 1);
}

} // namespace

TEST(SSHCommand, ForwardsLoopbackPortAndAsksForPassphrasesOnly)
{
    const QStringList arguments = forward(model());
    EXPECT_EQ(argumentAfter(arguments, "-L"), QStringLiteral("127.0.0.1:40000:db:1433"));
    for (const char *option :
         {"PasswordAuthentication=no", "KbdInteractiveAuthentication=no", "NumberOfPasswordPrompts=1",
          "ExitOnForwardFailure=yes", "StrictHostKeyChecking=yes"})
        EXPECT_TRUE(arguments.contains(QString::fromLatin1(option))) << option;
    EXPECT_EQ(arguments.last(), QStringLiteral("gate.example"));
    EXPECT_FALSE(arguments.contains(QStringLiteral("-l")));
    EXPECT_FALSE(arguments.contains(QStringLiteral("-p")));
    EXPECT_FALSE(arguments.contains(QStringLiteral("-i")));
}

TEST(SSHCommand, NamesUserPortAndKeyWhereTheyAreGiven)
{
    KNSSHTunnelModel through = model();
    through.port = 2222;
    through.username = QStringLiteral("me");
    through.keyFile = QStringLiteral("/home/me/my key");
    const QStringList arguments = forward(through);
    EXPECT_EQ(argumentAfter(arguments, "-p"), QStringLiteral("2222"));
    EXPECT_EQ(argumentAfter(arguments, "-l"), QStringLiteral("me"));
    EXPECT_EQ(argumentAfter(arguments, "-i"), QStringLiteral("/home/me/my key"));
}

TEST(SSHCommand, DoesNotParseHostAsOption)
{
    KNSSHTunnelModel through;
    through.host = QStringLiteral("-oProxyCommand=x");
    const QStringList arguments = forward(through);
    EXPECT_EQ(arguments.at(arguments.size() - 2), QStringLiteral("--"));
    // The argument after an option with a value is that value.
    through.username = QStringLiteral("-oProxyCommand=y");
    through.keyFile = QStringLiteral("-oProxyCommand=z");
    EXPECT_EQ(argumentAfter(forward(through), "-l"), QStringLiteral("-oProxyCommand=y"));
    EXPECT_EQ(argumentAfter(forward(through), "-i"), QStringLiteral("-oProxyCommand=z"));
    EXPECT_EQ(argumentAfter(forward(model(), QStringLiteral("-oProxyCommand=v")), "-L"),
              QStringLiteral("127.0.0.1:40000:-oProxyCommand=v:1433"));
    EXPECT_EQ(argumentAfter(forward(model(), QStringLiteral("fe80::1")), "-L"),
              QStringLiteral("127.0.0.1:40000:[fe80::1]:1433"));
}

TEST(SSHCommand, ErrorOutputBecomesErrorWithRemedy)
{
    const auto code = [](const char *complaints) {
        return KNSSHCommand::errorFor(model(), QString::fromLatin1(complaints)).code();
    };
    EXPECT_EQ(code("No ED25519 host key is known for gate.example and you have requested strict checking.\n"
                   "Host key verification failed."),
              KNSSHCommand::UnknownHost);
    EXPECT_EQ(code("@ WARNING: REMOTE HOST IDENTIFICATION HAS CHANGED! @\nHost key verification failed."),
              KNSSHCommand::ChangedHostKey);
    EXPECT_EQ(code("me@gate.example: Permission denied (publickey)."), KNSSHCommand::NotLetIn);
    EXPECT_EQ(code("ssh: Could not resolve hostname gate.example"), KNSSHCommand::Failed);
    EXPECT_TRUE(KNSSHCommand::errorFor(model(), QStringLiteral("ssh: no route"))
                    .localizedDescription()
                    .contains(QStringLiteral("ssh: no route")));
    EXPECT_FALSE(
        KNSSHCommand::errorFor(model(), QString()).localizedDescription().endsWith(QStringLiteral(": ")));
}

TEST(SSHHostKey, IsReadFromALineOfKnownHosts)
{
    const auto key = KNSSHHostKey::fromKnownHostsLine(QStringLiteral(
        "[gate]:2222 ssh-ed25519 AAAAC3NzaC1lZDI1NTE5AAAAIJwJ+4mPqwbY1vGcsSxvDKIMVcH3j2xYUIYn4Vd3Fj9n"));
    ASSERT_TRUE(key);
    EXPECT_EQ(key->host(), QStringLiteral("[gate]:2222"));
    EXPECT_EQ(key->type(), QStringLiteral("ED25519"));
    EXPECT_TRUE(key->fingerprint().startsWith(QStringLiteral("SHA256:")));
    EXPECT_EQ(key->fingerprint().size(), 7 + 43);
    const auto carried = KNSSHHostKey::fromError(key->unknownHostError());
    ASSERT_TRUE(carried);
    EXPECT_EQ(carried->fingerprint(), key->fingerprint());
}

TEST(SSHHostKey, IsNoneInOtherLinesAndErrors)
{
    for (const char *line : {"", "# a comment here", "host ssh-rsa", "host ssh-rsa !!!!", "@cert-authority"})
        EXPECT_FALSE(KNSSHHostKey::fromKnownHostsLine(QString::fromLatin1(line))) << line;
    EXPECT_FALSE(KNSSHHostKey::fromError(KNError()));
}

TEST(SSHTunnelModel, IsRestoredFromStorage)
{
    KNSSHTunnelModel through = model();
    EXPECT_EQ(KNSSHTunnelModel::fromVariantMap(through.toVariantMap()), through);
    through.port = 65535;
    through.username = QStringLiteral("me");
    through.keyFile = QStringLiteral("/k");
    EXPECT_EQ(KNSSHTunnelModel::fromVariantMap(through.toVariantMap()), through);
    EXPECT_FALSE(KNSSHTunnelModel::fromVariantMap({}).isUsed());
    EXPECT_TRUE(KNSSHTunnelModel().toVariantMap().isEmpty());
    EXPECT_EQ(KNSSHTunnelModel::fromVariantMap(
                  {{QStringLiteral("host"), QStringLiteral("h")}, {QStringLiteral("port"), 70000}})
                  .port,
              0);
}
