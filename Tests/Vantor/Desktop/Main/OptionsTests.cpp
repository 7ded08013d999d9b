#include "Desktop/Options.h"

#include <gtest/gtest.h>

namespace {

QStringList arguments(std::initializer_list<const char *> texts)
{
    QStringList list = {QStringLiteral("vantor")};
    for (const char *text : texts)
        list.append(QString::fromUtf8(text));
    return list;
}

} // namespace

TEST(Options, KnowFilesAndTheSampleServer)
{
    int status = -1;
    const auto options =
        Options::parse(arguments({"a.sql", "--sample", "--trace", "--", "--b.sql"}), &status);
    ASSERT_TRUE(options);
    EXPECT_TRUE(options->useSampleServer);
    EXPECT_TRUE(options->writesTrace);
    EXPECT_EQ(options->files, (QStringList{QStringLiteral("a.sql"), QStringLiteral("--b.sql")}));
}

TEST(Options, EndTheProgramWhenAskedForItsVersionOrHelp)
{
    int status = -1;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(Options::parse(arguments({"--version"}), &status));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "vantor " VANTOR_VERSION "\n");
    EXPECT_EQ(status, 0);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(Options::parse(arguments({"--help"}), &status));
    EXPECT_NE(testing::internal::GetCapturedStdout().find("--sample"), std::string::npos);
    EXPECT_EQ(status, 0);
}

TEST(Options, RefuseUnknownOptions)
{
    int status = -1;
    testing::internal::CaptureStderr();
    EXPECT_FALSE(Options::parse(arguments({"--smaple"}), &status));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("There is no option --smaple."), std::string::npos);
    EXPECT_EQ(status, 2);
}
