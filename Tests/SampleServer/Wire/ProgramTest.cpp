#include "Support/SampleServerFixture.h"

#include "WireClient.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/wait.h>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// The program as its users start it, with the real engine behind the wire.

namespace {

int exitStatusOf(const std::string &arguments)
{
    const int status = std::system(
        (std::string(SampleServerFixture::program()) + ' ' + arguments + " >/dev/null 2>&1").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool accepts(const SampleServerFixture &server, const LoginBytes::Login &login)
{
    try {
        return WireClient::contains(WireClient(server.port()).login(login), {0xAD, 0x32, 0});
    } catch (const std::runtime_error &) {
        return false; // closed without a word
    }
}

LoginBytes::Login loginWith(const std::u16string &password)
{
    LoginBytes::Login login;
    login.password = password;
    return login;
}

} // namespace

TEST(SampleServerProgram, PrintsItsOptionsAndRefusesOthers)
{
    EXPECT_EQ(exitStatusOf("--help"), 0);
    EXPECT_EQ(exitStatusOf("--nonsense"), 2);
    EXPECT_EQ(exitStatusOf("--port none"), 2);
    EXPECT_EQ(exitStatusOf("--bind nowhere"), 1);
    EXPECT_EQ(exitStatusOf("--tls require"), 2);
    EXPECT_EQ(exitStatusOf("--tls require --cert /nowhere --key /nowhere"), 1);
}

TEST(SampleServerProgram, AcceptsItsDefaultPassword)
{
    SampleServerFixture &server = SampleServerFixture::shared();
    EXPECT_TRUE(accepts(server, loginWith(u"Sample-1")));
    EXPECT_FALSE(accepts(server, loginWith(u"Sample-2")));
}

TEST(SampleServerProgram, TakesItsPasswordFromTheEnvironment)
{
    const SampleServerFixture usual({{}, {{"VANTOR_SAMPLE_PASSWORD", "Other"}}});
    EXPECT_TRUE(accepts(usual, loginWith(u"Other")));
    EXPECT_FALSE(accepts(usual, loginWith(u"Sample-1")));
    const SampleServerFixture named({{"--password-env", "MINE", "--user", "me"}, {{"MINE", "Third"}}});
    LoginBytes::Login login = loginWith(u"Third");
    EXPECT_FALSE(accepts(named, login));
    login.userName = u"ME";
    EXPECT_TRUE(accepts(named, login));
}

TEST(SampleServerProgram, DelaysAnswersAfterManyFailedLogins)
{
    const SampleServerFixture server;
    for (int i = 0; i < 20; ++i)
        EXPECT_FALSE(accepts(server, loginWith(u"wrong")));
    const auto start = Clock::now();
    for (int i = 0; i < 4; ++i)
        EXPECT_FALSE(accepts(server, loginWith(u"wrong")));
    EXPECT_GE(Clock::now() - start, 25ms + 50ms + 75ms + 100ms);
    EXPECT_TRUE(accepts(server, loginWith(u"Sample-1")));
}

TEST(SampleServerProgram, OffersNoVersionAboveItsLimit)
{
    const SampleServerFixture server({{"--tds", "7.1"}, {}});
    LoginBytes::Login login;
    EXPECT_FALSE(accepts(server, login));
    login.tdsVersion = 0x71000001;
    EXPECT_TRUE(accepts(server, login));
}

TEST(SampleServerProgram, PrintsTheBrowserPort)
{
    const SampleServerFixture server({{"--browser-port", "0"}, {}});
    EXPECT_NE(server.browserPort(), 0);
    EXPECT_EQ(SampleServerFixture::shared().browserPort(), 0);
}

TEST(SampleServerProgram, StopsOnSigtermAndSigintWithinASecondWhileSessionsAreBusy)
{
    for (const int signal : {SIGTERM, SIGINT}) {
        SampleServerFixture server;
        std::vector<WireClient> clients;
        for (const auto *batch : {u"WAITFOR DELAY '00:10:00'", u"SELECT 1", u""}) {
            WireClient &client = clients.emplace_back(server.port());
            client.login();
            if (*batch)
                client.sendBatch(batch);
        }
        const auto start = Clock::now();
        ::kill(server.processId(), signal);
        EXPECT_EQ(server.stop(), 0);
        EXPECT_LT(Clock::now() - start, 1s);
    }
}
