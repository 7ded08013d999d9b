#include "LoginBytes.h"
#include "MemoryTransport.h"
#include "Wire/Login7.h"
#include "Wire/Prelogin.h"
#include "Wire/ProtocolError.h"

#include <gtest/gtest.h>

using namespace SampleServer;

namespace {

LoginBytes::Login fullLogin()
{
    LoginBytes::Login login;
    login.userName = u"sa";
    login.password = u"Päss\xD83D\xDE00";
    login.database = u"tempdb";
    login.packetSize = 8192;
    return login;
}

} // namespace

TEST(Login7, ReadsTheFieldsOfALogin)
{
    const Login7 login = parseLogin7(LoginBytes::login7(fullLogin()));
    EXPECT_EQ(login.tdsVersion, 0x74000004u);
    EXPECT_EQ(login.packetSize, 8192u);
    EXPECT_EQ(login.userName, "sa");
    EXPECT_EQ(login.password, "Päss😀");
    EXPECT_EQ(login.database, "tempdb");
    EXPECT_EQ(login.hostName, "host");
    EXPECT_EQ(login.applicationName, "application");
    EXPECT_FALSE(login.odbc);
    EXPECT_FALSE(login.integratedSecurity);
    EXPECT_FALSE(login.featureExtension);
}

TEST(Login7, RecognisesClientsThatAskForOdbcSettings)
{
    Bytes message = LoginBytes::login7(fullLogin());
    message[25] = 0x02;
    EXPECT_TRUE(parseLogin7(message).odbc);
}

TEST(Login7, DecodesAPassword)
{
    // "a" is 61 00: the halves of each byte swapped, then XOR A5.
    EXPECT_EQ(hex(revealPassword(Bytes{0xB3, 0xA5})), "61 00");
    EXPECT_TRUE(revealPassword({}).empty());
}

TEST(Login7, ReadsFeaturesAndTheSspiMessage)
{
    LoginBytes::Login wanted = fullLogin();
    wanted.sspi = {1, 2, 3};
    wanted.features = {0x04, 1, 0, 0, 0, 1, 0x0A, 1, 0, 0, 0, 1, 0xFF};
    const Login7 login = parseLogin7(LoginBytes::login7(wanted));
    EXPECT_TRUE(login.integratedSecurity);
    EXPECT_EQ(hex(login.sspi), "01 02 03");
    EXPECT_TRUE(login.featureExtension);
    EXPECT_TRUE(login.utf8Feature);
}

TEST(Login7, RefusesEveryTruncation)
{
    const Bytes whole = LoginBytes::login7(fullLogin());
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(parseLogin7(std::span(whole).first(size)), ProtocolError) << size;
}

TEST(Login7, RefusesATruncationWithAMatchingLength)
{
    const Bytes whole = LoginBytes::login7(fullLogin());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        if (size >= 4)
            std::memcpy(cut.data(), &size, 4);
        EXPECT_THROW(parseLogin7(cut), ProtocolError) << size;
    }
}

TEST(Login7, NeverReadsOutsideOfACorruptMessage)
{
    LoginBytes::Login wanted = fullLogin();
    wanted.features = {0x0A, 1, 0, 0, 0, 1, 0xFF};
    const Bytes whole = LoginBytes::login7(wanted);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        Bytes spoiled = whole;
        for (const std::uint8_t value : {0x00, 0x7F, 0xFF}) {
            spoiled[at] = value;
            try {
                parseLogin7(spoiled);
            } catch (const ProtocolError &) { // as good as a login of other content; asan watches
            }
        }
    }
}

TEST(Login7, RefusesNamesAbove128Characters)
{
    LoginBytes::Login login = fullLogin();
    login.userName = std::u16string(128, u'x');
    EXPECT_NO_THROW(parseLogin7(LoginBytes::login7(login)));
    login.userName += u'x';
    EXPECT_THROW(parseLogin7(LoginBytes::login7(login)), ProtocolError);
}

TEST(Prelogin, ReadsTheEncryptionOption)
{
    for (const auto encryption :
         {Encryption::Off, Encryption::On, Encryption::NotSupported, Encryption::Required})
        EXPECT_EQ(parsePrelogin(LoginBytes::prelogin(static_cast<std::uint8_t>(encryption))).encryption,
                  encryption);
}

TEST(Prelogin, RefusesEveryTruncation)
{
    const Bytes whole = LoginBytes::prelogin(0);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(parsePrelogin(std::span(whole).first(size)), ProtocolError) << size;
}

TEST(Prelogin, AnswersVersionEncryptionInstanceThreadAndMars)
{
    EXPECT_EQ(hex(preloginResponse({}, Encryption::NotSupported, {16, 0, 1000, 6})),
              "00 00 1A 00 06 01 00 20 00 01 02 00 21 00 01 03 00 22 00 00 04 00 22 00 01 FF "
              "10 00 03 E8 00 00 02 00 00");
}

TEST(Prelogin, AnswersTheFederatedAuthenticationOfAClientThatAsks)
{
    EXPECT_EQ(hex(preloginResponse({Encryption::Off, true}, Encryption::NotSupported, {16, 0, 1000, 6})),
              "00 00 1F 00 06 01 00 25 00 01 02 00 26 00 01 03 00 27 00 00 04 00 27 00 01 06 00 28 00 01 FF "
              "10 00 03 E8 00 00 02 00 00 00");
}
