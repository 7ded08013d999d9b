#include "Wire/Options.h"

#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

Options parsed(std::vector<const char *> arguments)
{
    return parseOptions(arguments);
}

} // namespace

TEST(SampleServerOptions, HaveDefaultsThatAreSafe)
{
    const Options options = parsed({});
    EXPECT_EQ(options.bindAddress, "127.0.0.1");
    EXPECT_EQ(options.port, 0);
    EXPECT_EQ(options.user, "sa");
    EXPECT_EQ(options.passwordVariable, "VANTOR_SAMPLE_PASSWORD");
    EXPECT_EQ(options.highestVersion, TdsVersion::V74);
    EXPECT_FALSE(options.browserPort);
    EXPECT_FALSE(options.help);
}

TEST(SampleServerOptions, AreReadInAnyOrder)
{
    const Options options =
        parsed({"--tds", "7.2", "--browser-port", "0", "--port", "65535", "--bind", "::1", "--user", "me",
                "--password-env", "P", "--instance", "I", "--version-banner", "B", "--help"});
    EXPECT_EQ(options.highestVersion, TdsVersion::V72);
    EXPECT_EQ(options.browserPort, 0);
    EXPECT_EQ(options.port, 65535);
    EXPECT_EQ(options.bindAddress, "::1");
    EXPECT_EQ(options.user, "me");
    EXPECT_EQ(options.passwordVariable, "P");
    EXPECT_EQ(options.instance, "I");
    EXPECT_EQ(options.versionBanner, "B");
    EXPECT_TRUE(options.help);
}

TEST(SampleServerOptions, KnowTheProtocolOfAnEditionUnlessOneIsGiven)
{
    EXPECT_EQ(parsed({}).edition, Edition::Sql2022);
    EXPECT_EQ(parsed({"--edition", "azure"}).edition, Edition::Azure);
    EXPECT_EQ(parsed({"--edition", "2000"}).highestVersion, TdsVersion::V71);
    EXPECT_EQ(parsed({"--edition", "2008"}).highestVersion, TdsVersion::V73B);
    EXPECT_EQ(parsed({"--tds", "7.4", "--edition", "2000"}).highestVersion, TdsVersion::V74);
    EXPECT_THROW(parsed({"--edition", "2005"}), UsageError);
}

TEST(SampleServerOptions, RefuseUnknownOptions)
{
    EXPECT_EQ(parsed({"--tables", "50000"}).tables, 50000);
    EXPECT_THROW(parsed({"--tables", "-1"}), UsageError);
    EXPECT_THROW(parsed({"--tables", "many"}), UsageError);
    EXPECT_THROW(parsed({"--nonsense"}), UsageError);
    EXPECT_THROW(parsed({"--port"}), UsageError);
    for (const char *port : {"", "x", "1x", "-1", "65536", " 1"})
        EXPECT_THROW(parsed({"--port", port}), UsageError) << port;
    for (const char *version : {"7.0", "7.5", "8", ""})
        EXPECT_THROW(parsed({"--tds", version}), UsageError) << version;
}

TEST(SampleServerOptions, TakeEncryptionOnlyWithACertificateAndItsKey)
{
    EXPECT_EQ(parsed({}).tls, TlsPolicy::Off);
    EXPECT_EQ(parsed({"--tls", "off"}).tls, TlsPolicy::Off);
    EXPECT_EQ(parsed({"--tls", "request", "--cert", "c", "--key", "k"}).tls, TlsPolicy::Request);
    const Options options = parsed({"--key", "k", "--cert", "c", "--tls", "require"});
    EXPECT_EQ(options.tls, TlsPolicy::Require);
    EXPECT_EQ(options.certificateFile, "c");
    EXPECT_EQ(options.keyFile, "k");
    EXPECT_THROW(parsed({"--tls", "on", "--cert", "c", "--key", "k"}), UsageError);
    EXPECT_THROW(parsed({"--tls", "request"}), UsageError);
    EXPECT_THROW(parsed({"--tls", "require", "--cert", "c"}), UsageError);
    EXPECT_THROW(parsed({"--tls", "require", "--key", "k"}), UsageError);
    EXPECT_THROW(parsed({"--cert", "c", "--key", "k"}), UsageError);
    EXPECT_TRUE(parsed({"--tls", "require", "--help"}).help);
}

TEST(SampleServerOptions, FindTheVersionInABanner)
{
    const ProgramVersion version = versionInBanner("Microsoft SQL Server  2000 - 8.00.2039 (Intel X86)");
    EXPECT_EQ(version.major, 8);
    EXPECT_EQ(version.minor, 0);
    EXPECT_EQ(version.build, 2039);
    EXPECT_EQ(version.revision, 0);
    EXPECT_EQ(versionInBanner("15.0.4153.1").revision, 1);
    EXPECT_EQ(versionInBanner("no number").major, 16);
}
