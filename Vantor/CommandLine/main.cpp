#include "CommandLine/CatalogCommand.h"
#include "CommandLine/CompleteCommand.h"
#include "CommandLine/DesignCommand.h"
#include "CommandLine/ExitStatus.h"
#include "CommandLine/ExportCommand.h"
#include "CommandLine/FormatCommand.h"
#include "CommandLine/ImportCommand.h"
#include "CommandLine/ParseCommand.h"
#include "CommandLine/QueryCommand.h"
#include "CommandLine/SplitCommand.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TreeCommand.h"
#include "Common/ConnectorFolder.h"
#include "Connector/KNConnectorPlugin.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"

#include <QCoreApplication>

#include <algorithm>
#include <clocale>
#include <new>
#include <string>
#include <system_error>

namespace {

const char HelpText[] = "Usage: vantor-cli COMMAND [OPTIONS]\n"
                        "\n"
                        "Commands:\n"
                        "  query    run SQL on a server and write its results\n"
                        "  catalog  list and run the queries that the program itself uses\n"
                        "  tree     print the objects of a server as a tree\n"
                        "  menu     print the menu of an object\n"
                        "  script   print a script of an object: CREATE, ALTER, DROP, MySQL, ...\n"
                        "  design   print or run the script that changes a column of a table\n"
                        "  import   import a file into a table\n"
                        "  export   write the script of a database, with its rows if wanted\n"
                        "  split    print the batches of a script as JSON\n"
                        "  parse    check the syntax of a script without running it\n"
                        "  format   print a script with new line breaks and indentation\n"
                        "  complete print what the editor offers at a place of a script\n"
                        "\n"
                        "vantor-cli COMMAND --help tells more. vantor-cli --version prints the version.\n";

struct Command
{
    const char *name;
    int (*run)(const QStringList &arguments, const VantorDBCPtr &emptySettings);
};

constexpr Command Commands[] = {
    {"query", runQueryCommand},   {"catalog", runCatalogCommand}, {"tree", runTreeCommand},
    {"menu", runMenuCommand},     {"script", runScriptCommand},   {"design", runDesignCommand},
    {"import", runImportCommand}, {"split", runSplitCommand},     {"complete", runCompleteCommand},
    {"parse", runParseCommand},   {"format", runFormatCommand},   {"export", runExportCommand},
};

/// Null if there is no such command.
const Command *findCommand(const QString &name)
{
    const auto *found = std::find_if(std::begin(Commands), std::end(Commands),
                                     [&](const Command &known) { return name == QLatin1String(known.name); });
    return found == std::end(Commands) ? nullptr : found;
}

QStringList argumentTexts(int count, char **arguments)
{
    QStringList texts;
    for (int i = 0; i < count; ++i)
        texts.append(QString::fromLocal8Bit(arguments[i]));
    return texts;
}

/// Loads the first usable connector and reports problems with the others.
KNConnectorPlugin *loadConnector()
{
    QStringList problems;
    KNConnectorPlugin *const connector = ConnectorFolder::loadConnector(&problems);
    for (const QString &problem : std::as_const(problems))
        Terminal::printError(problem, connector ? Terminal::Colour::Yellow : Terminal::Colour::Red);
    return connector;
}

int run(const QStringList &arguments)
{
    const QString command = arguments.value(1);
    if (command == QLatin1String("--help") || command == QLatin1String("-h") ||
        command == QLatin1String("help")) {
        fputs(HelpText, stdout);
        return ExitSuccess;
    }
    if (command == QLatin1String("--version")) {
        printf("vantor-cli %s\n", VANTOR_VERSION);
        return ExitSuccess;
    }
    const Command *const found = findCommand(command);
    if (!found) {
        if (!command.isEmpty())
            Terminal::printError(KNFormat("There is no command \"%@\".", command), Terminal::Colour::Red);
        fputs(HelpText, stderr);
        return ExitUsage;
    }
    KNConnectorPlugin *connector = loadConnector();
    if (!connector)
        return ExitNoConnection;
    return found->run(arguments.mid(2), connector->createConnectionDetails());
}

/// Qt's own messages are logged: standard error is for messages of the server and of this program.
void logQtMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    KNLogHelper::sharedInstance()->logMessage(text);
}

/// Returns a failure if the C library could not write its buffers, which commands do not check.
int withOutputChecked(int status)
{
    const bool isWritten = fflush(stdout) == 0 && !ferror(stdout);
    if (isWritten || status != ExitSuccess)
        return status;
    return Terminal::fail(ExitUsage, QStringLiteral("The output could not be written to standard output."));
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(logQtMessage);
    // Usage lines begin with Qt's program name, which therefore includes the command's.
    std::string name = "vantor-cli";
    if (argc > 1 && findCommand(QString::fromLocal8Bit(argv[1])))
        name = name + ' ' + argv[1];
    const QStringList arguments = argumentTexts(argc, argv);
    if (argc > 0)
        argv[0] = name.data();
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vantor-cli"));
    // The width of characters on the terminal depends on its locale; the number format does not.
    std::setlocale(LC_CTYPE, "");
    try {
        return withOutputChecked(run(arguments));
    } catch (const KNAssertionFailure &failure) {
        Terminal::printError(KNFormat("Internal error: %@ (%@)", failure.message(), failure.sourcePath()),
                             Terminal::Colour::Red);
        return ExitSqlError;
    } catch (const std::bad_alloc &) {
        fputs("There is not enough memory.\n", stderr);
        return ExitSqlError;
    } catch (const std::system_error &failure) { // a thread could not be started
        fprintf(stderr, "%s.\n", failure.what());
        return ExitSqlError;
    }
}
