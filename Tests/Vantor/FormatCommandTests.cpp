#include "Vantor/Program.h"

namespace {

Outcome formatScript(const char *text, const QStringList &options = {})
{
    return Program(QStringList{QStringLiteral("format"), QStringLiteral("-")} + options, text).wait();
}

} // namespace

TEST(FormatCommand, PrintsTheFormattedScript)
{
    const Outcome outcome = formatScript("select a,b from t\ngo 2\nselect 1\n");
    EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
    EXPECT_EQ(outcome.output, "SELECT a, b\nFROM t\ngo 2\nSELECT 1\n");
}

TEST(FormatCommand, TakesTheStyleFromItsOptions)
{
    const Outcome outcome =
        formatScript("SELECT FirstColumn, SecondColumn, ThirdColumn\n",
                     {QStringLiteral("--keywords"), QStringLiteral("lower"), QStringLiteral("--width"),
                      QStringLiteral("40"), QStringLiteral("--indent"), QStringLiteral("2"),
                      QStringLiteral("--leading-commas")});
    EXPECT_EQ(outcome.output, "select\n  FirstColumn\n  , SecondColumn\n  , ThirdColumn\n");
}

TEST(FormatCommand, RefusesOtherValues)
{
    for (const char *const option :
         {"--keywords=loud", "--width=39", "--width=x", "--indent=0", "--nonsense"})
        EXPECT_EQ(formatScript("SELECT 1", {QString::fromLatin1(option)}).status, 2) << option;
    EXPECT_EQ(Program({QStringLiteral("format")}).wait().status, 2);
}
