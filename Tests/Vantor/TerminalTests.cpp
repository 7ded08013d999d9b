#include "Vantor/Program.h"
#include "Vantor/TerminalProgram.h"

#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>

namespace {

QString terminalServer()
{
    return QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port());
}

QStringList queryArguments(const QStringList &arguments)
{
    return QStringList{QStringLiteral("query"), QStringLiteral("--server"), terminalServer(),
                       QStringLiteral("--user"), QStringLiteral("sa")} +
           arguments;
}

const QByteArray Prompt = "Password for sa: ";

/// A change of colour and of the title, a bell, a change of direction and a control of the second set.
const QString ControlText = QString::fromUtf8("\x1b[31m\x1b]0;title\a\xe2\x80\xae\xc2\x9b");
const QByteArray EscapedControlText = "\\u001b[31m\\u001b]0;title\\u0007\\u202e\\u009b";

bool controlsTerminal(const QByteArray &screen)
{
    return screen.contains("\x1b[31m") || screen.contains("\x1b]") || screen.contains('\a') ||
           screen.contains("\xe2\x80\xae") || screen.contains("\xc2\x9b");
}

QString quotedControlName(const QString &before)
{
    QString name = before + ControlText;
    return QLatin1Char('[') + name.replace(QLatin1Char(']'), QLatin1String("]]")) + QLatin1Char(']');
}

} // namespace

TEST(PasswordPrompt, TakesThePasswordWithoutShowingIt)
{
    TerminalProgram program(queryArguments({QStringLiteral("SELECT 12 AS a")}), nullptr);
    ASSERT_TRUE(program.waitForText(Prompt));
    ASSERT_TRUE(program.waitForEcho(false));
    program.type("Sample-1\n");
    EXPECT_EQ(program.wait(), 0) << program.screen().toStdString();
    EXPECT_FALSE(program.screen().contains("Sample-1"));
    EXPECT_TRUE(program.screen().contains("12"));
    EXPECT_TRUE(program.hasEcho());
}

TEST(PasswordPrompt, CtrlCRestoresEcho)
{
    TerminalProgram program(queryArguments({QStringLiteral("SELECT 1")}), nullptr);
    ASSERT_TRUE(program.waitForText(Prompt));
    ASSERT_TRUE(program.waitForEcho(false));
    program.type("abc\x03");
    EXPECT_EQ(program.wait(), 130);
    EXPECT_TRUE(program.hasEcho());
}

TEST(PasswordPrompt, CtrlBackslashRestoresEcho)
{
    TerminalProgram program(queryArguments({QStringLiteral("SELECT 1")}), nullptr);
    ASSERT_TRUE(program.waitForText(Prompt));
    ASSERT_TRUE(program.waitForEcho(false));
    program.type("\x1c");
    EXPECT_EQ(program.wait(), 128 + SIGQUIT);
    EXPECT_TRUE(program.hasEcho());
}

TEST(PasswordPrompt, IsStoppedWithEchoAndAsksAgainWhenContinued)
{
    TerminalProgram program(queryArguments({QStringLiteral("SELECT 12 AS a")}), nullptr);
    ASSERT_TRUE(program.waitForText(Prompt));
    ASSERT_TRUE(program.waitForEcho(false));
    program.type("\x1a");
    ASSERT_TRUE(program.waitForText("stopped with echo")) << program.screen().toStdString();
    ASSERT_TRUE(program.waitForText(Prompt, 2)) << program.screen().toStdString();
    ASSERT_TRUE(program.waitForEcho(false));
    program.type("Sample-1\n");
    EXPECT_EQ(program.wait(), 0) << program.screen().toStdString();
    EXPECT_TRUE(program.hasEcho());
}

TEST(OnATerminal, NoValueNameOrMessageControlsIt)
{
    const QString sql =
        QStringLiteral("PRINT N'%1'\nSELECT N'%1' AS %2").arg(ControlText, quotedControlName({}));
    for (const char *format : {"table", "csv", "json"}) {
        SCOPED_TRACE(format);
        TerminalProgram program(
            queryArguments({QStringLiteral("--format"), QString::fromLatin1(format), sql}));
        EXPECT_EQ(program.wait(), 0) << program.screen().toStdString();
        EXPECT_FALSE(controlsTerminal(program.screen())) << program.screen().toStdString();
        // The message, the name and the value.
        EXPECT_GE(program.screen().count(EscapedControlText), 3) << program.screen().toStdString();
    }
}

TEST(OnATerminal, NoErrorControlsIt)
{
    TerminalProgram program(queryArguments({QStringLiteral("SELECT %1").arg(quotedControlName({}))}));
    EXPECT_EQ(program.wait(), 1);
    EXPECT_FALSE(controlsTerminal(program.screen())) << program.screen().toStdString();
    EXPECT_TRUE(program.screen().contains(EscapedControlText));
}

TEST(OnATerminal, NoNameOfAnObjectControlsIt)
{
    const SampleServerFixture server;
    const auto onServer = [&](const char *command, const QStringList &arguments) {
        return QStringList{QString::fromLatin1(command), QStringLiteral("--server"),
                           QStringLiteral("127.0.0.1,%1").arg(server.port()), QStringLiteral("--user"),
                           QStringLiteral("sa")} +
               arguments;
    };
    const QString table = QStringLiteral("evil") + ControlText;
    ASSERT_EQ(Program(onServer("query", {QStringLiteral("--database"), QStringLiteral("shop"),
                                         QStringLiteral("CREATE TABLE dbo.%1 (id int)")
                                             .arg(quotedControlName(QStringLiteral("evil")))}))
                  .wait()
                  .status,
              0);
    const QString path = QStringLiteral("shop/Tables/") + table;
    for (const QStringList &arguments :
         {onServer("tree", {QStringLiteral("shop/Tables")}),
          onServer("tree", {QStringLiteral("--json"), QStringLiteral("shop/Tables")}),
          onServer("menu", {path}), onServer("script", {path, QStringLiteral("CREATE to")})}) {
        TerminalProgram program(arguments);
        EXPECT_EQ(program.wait(), 0) << program.screen().toStdString();
        EXPECT_FALSE(controlsTerminal(program.screen())) << program.screen().toStdString();
        EXPECT_TRUE(program.screen().contains("title\\u0007\\u202e\\u009b"))
            << program.screen().toStdString();
    }
}

TEST(InAPipe, CsvAndJsonHoldControlCharactersAsTheyAre)
{
    const QString sql = QStringLiteral("SELECT N'%1' AS a").arg(ControlText);
    const Outcome csv =
        Program(queryArguments({QStringLiteral("--format"), QStringLiteral("csv"), sql})).wait();
    EXPECT_EQ(csv.output, "a\n" + ControlText.toUtf8() + "\n");
    const Outcome json =
        Program(queryArguments({QStringLiteral("--format"), QStringLiteral("json"), sql})).wait();
    EXPECT_TRUE(json.output.contains("\xe2\x80\xae")) << json.output.toStdString();
}

TEST(Help, NamesTheCommand)
{
    for (const char *command : {"query", "catalog", "tree", "menu", "script", "split"}) {
        const Outcome outcome = Program({QString::fromLatin1(command), QStringLiteral("--help")}).wait();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_TRUE(outcome.output.startsWith("Usage: vantor-cli " + QByteArray(command) + " [options]"))
            << outcome.output.toStdString();
    }
}

TEST(StandardError, HoldsNothingButMessages)
{
    // In this locale Qt has something to complain about.
    qputenv("LC_ALL", "C");
    const Outcome outcome = Program(queryArguments({QStringLiteral("--format"), QStringLiteral("csv"),
                                                    QStringLiteral("PRINT N'größer'")}))
                                .wait();
    qunsetenv("LC_ALL");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, QByteArray("größer\n"));
}

TEST(MenuCommand, OmitsObjectOfItemWithoutOne)
{
    const Outcome outcome = Program({QStringLiteral("menu"), QStringLiteral("--server"), terminalServer(),
                                     QStringLiteral("--user"), QStringLiteral("sa"), QStringLiteral("shop")})
                                .wait();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.contains("MySQL  exportDatabaseAsMySQL:  (disabled)"))
        << outcome.output.toStdString();
    EXPECT_FALSE(outcome.output.contains("(null)"));
}

TEST(FullDisk, IsAnErrorOfEveryCommand)
{
    const QStringList server = {QStringLiteral("--server"), terminalServer(), QStringLiteral("--user"),
                                QStringLiteral("sa")};
    const QList<QStringList> commands = {
        QStringList{QStringLiteral("query")} + server + QStringList{QStringLiteral("SELECT 1")},
        QStringList{QStringLiteral("catalog")},
        QStringList{QStringLiteral("tree")} + server,
        QStringList{QStringLiteral("menu")} + server + QStringList{QStringLiteral("shop/Tables/Orders")},
        QStringList{QStringLiteral("script")} + server +
            QStringList{QStringLiteral("shop/Tables/Orders"), QStringLiteral("CREATE to")},
        {QStringLiteral("split"), QStringLiteral("-")},
        {QStringLiteral("query"), QStringLiteral("--help")},
    };
    for (const QStringList &command : commands) {
        const Outcome outcome = Program(command, {}, SampleServerFixture::Password, "/dev/full").wait();
        EXPECT_EQ(outcome.status, 2) << command.first().toStdString();
        EXPECT_TRUE(outcome.errors.contains("could not be written to standard output"))
            << outcome.errors.toStdString();
    }
}

TEST(TextOfAFile, InUtf16IsReadWithAndWithoutAMark)
{
    const QString sql = QStringLiteral("SELECT N'größer 🐘'");
    for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        for (const auto flag : {QStringConverter::Flag::Default, QStringConverter::Flag::WriteBom}) {
            const QByteArray bytes = QStringEncoder(encoding, flag).encode(sql);
            const Outcome outcome = Program({QStringLiteral("split"), QStringLiteral("-")}, bytes).wait();
            EXPECT_EQ(outcome.status, 0) << outcome.errors.toStdString();
            EXPECT_TRUE(outcome.output.contains(sql.toUtf8())) << outcome.output.toStdString();
        }
    }
}

TEST(TextOfAFile, ThatEndsInHalfACharacterIsAnError)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("cut.sql"));
    const QString sql = QStringLiteral("SELECT N'🐘");
    for (const auto encoding : {QStringConverter::Utf16LE, QStringConverter::Utf16BE}) {
        for (const auto flag : {QStringConverter::Flag::Default, QStringConverter::Flag::WriteBom}) {
            const QByteArray bytes = QStringEncoder(encoding, flag).encode(sql);
            for (const qsizetype missing : {1, 2, 3}) {
                QFile file(path);
                ASSERT_TRUE(file.open(QIODevice::WriteOnly));
                file.write(bytes.chopped(missing));
                file.close();
                const Outcome outcome = Program({QStringLiteral("split"), path}).wait();
                EXPECT_EQ(outcome.status, 2) << missing;
                EXPECT_TRUE(outcome.errors.contains(path.toUtf8())) << outcome.errors.toStdString();
            }
        }
    }
}
