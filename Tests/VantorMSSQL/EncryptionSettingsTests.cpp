#include "Implementations/MSSQLEncryption.h"

#include "Support/PrintQt.h"
#include "Support/TestCertificates.h"

#include <gtest/gtest.h>

namespace {

using Mode = MSSQLEncryption::Mode;

MSSQLEncryption settingsFor(const QVariantMap &parameters)
{
    KNError error;
    const auto encryption = MSSQLEncryption::fromSessionParameters(parameters, &error);
    EXPECT_TRUE(encryption) << error.localizedDescription().toStdString();
    return encryption.value_or(MSSQLEncryption());
}

QVariantMap with(const char *mode, const QVariantMap &others = {})
{
    QVariantMap parameters = others;
    parameters.insert(QStringLiteral("encryption"), QString::fromLatin1(mode));
    return parameters;
}

} // namespace

TEST(EncryptionSettings, DefaultToRequest)
{
    const MSSQLEncryption encryption = settingsFor({});
    EXPECT_EQ(encryption.mode, Mode::Request);
    EXPECT_FALSE(encryption.verifiesCertificate);
    EXPECT_FALSE(encryption.checksHostName);
    EXPECT_TRUE(encryption.trustedCertificateFile.isNull());
    EXPECT_EQ(settingsFor(with("request")).mode, Mode::Request);
    EXPECT_FALSE(settingsFor(with("request")).verifiesCertificate);
    EXPECT_EQ(settingsFor(with("off")).mode, Mode::Off);
}

TEST(EncryptionSettings, ThatRequireItVerifyTheServerUnlessToldNotTo)
{
    EXPECT_TRUE(settingsFor(with("require")).verifiesCertificate);
    EXPECT_TRUE(settingsFor(with("require")).checksHostName);
    const MSSQLEncryption unchecked =
        settingsFor(with("require", {{QStringLiteral("checkHostName"), false}}));
    EXPECT_TRUE(unchecked.verifiesCertificate);
    EXPECT_FALSE(unchecked.checksHostName);
    const MSSQLEncryption trusting =
        settingsFor(with("require", {{QStringLiteral("trustServerCertificate"), true},
                                     {QStringLiteral("checkHostName"), true}}));
    EXPECT_EQ(trusting.mode, Mode::Require);
    EXPECT_FALSE(trusting.verifiesCertificate);
    EXPECT_FALSE(trusting.checksHostName);
}

TEST(EncryptionSettings, ThatNameACertificateRequireEncryption)
{
    const QVariantMap file = {{QStringLiteral("trustedCertificateFile"),
                               QString::fromStdString(TestCertificates::shared().authority())}};
    for (const MSSQLEncryption &encryption :
         {settingsFor(file), settingsFor(with("request", file)), settingsFor(with("require", file))}) {
        EXPECT_EQ(encryption.mode, Mode::Require);
        EXPECT_TRUE(encryption.verifiesCertificate);
        EXPECT_TRUE(encryption.checksHostName);
    }
}

TEST(EncryptionSettings, RefuseInvalidValues)
{
    for (const char *mode : {"Require", "yes", "strict", " require"}) {
        KNError error;
        EXPECT_FALSE(MSSQLEncryption::fromSessionParameters(with(mode), &error)) << mode;
        EXPECT_TRUE(error);
    }
}

TEST(EncryptionSettings, DoNotLookAtTheFileWithoutEncryption)
{
    const QVariantMap file = {{QStringLiteral("trustedCertificateFile"), QStringLiteral("/nowhere")}};
    EXPECT_FALSE(settingsFor(with("off", file)).verifiesCertificate);
    KNError error;
    EXPECT_FALSE(MSSQLEncryption::fromSessionParameters(with("request", file), &error));
    EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("/nowhere")));
}
