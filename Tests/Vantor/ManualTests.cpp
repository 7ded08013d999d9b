#include "Export/ResultFormat.h"
#include "Vantor/Program.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

QString textOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return QString::fromUtf8(file.readAll());
}

QString packaging(const char *path)
{
    return textOf(QStringLiteral(PACKAGING_FOLDER "/") + QString::fromLatin1(path));
}

/// The options that a text speaks of, such as "--login-timeout".
QSet<QString> optionsIn(const QString &text)
{
    static const QRegularExpression option(QStringLiteral("--[a-z][a-z-]*"));
    QSet<QString> options;
    for (auto matches = option.globalMatch(text); matches.hasNext();)
        options.insert(matches.next().captured());
    return options;
}

QSet<QString> optionsInManual(const char *page)
{
    return optionsIn(packaging(page).remove(QLatin1Char('\\')));
}

QSet<QString> optionsOfTerminalProgram()
{
    QSet<QString> options = {QStringLiteral("--help"), QStringLiteral("--version")};
    for (const char *const command : {"query", "tree", "menu", "script", "design", "import", "export",
                                      "catalog", "split", "complete", "parse", "format"}) {
        Program program({QString::fromLatin1(command), QStringLiteral("--help")});
        options |= optionsIn(QString::fromUtf8(program.wait().output));
    }
    return options;
}

} // namespace

TEST(Manual, ListsAllOptionsOfVantorCli)
{
    const QSet<QString> options = optionsOfTerminalProgram() - optionsIn(QStringLiteral("--help --version"));
    EXPECT_GT(options.size(), 12);
    EXPECT_EQ(optionsInManual("man/vantor-cli.1"), options);
}

TEST(Completion, ListsAllOptionsOfVantorCli)
{
    EXPECT_EQ(optionsIn(packaging("completion/vantor-cli")), optionsOfTerminalProgram());
}

TEST(Manual, NamesTheFormatsOfTheTerminalProgram)
{
    const QStringList names = ResultFormat::namesFor(ResultFormat::Terminal);
    EXPECT_TRUE(packaging("man/vantor-cli.1").contains(names.join(QLatin1Char('|'))));
    EXPECT_TRUE(packaging("completion/vantor-cli").contains(names.join(QLatin1Char(' '))));
}
