#include "CommandLine/CatalogCommand.h"
#include "CommandLine/ExitStatus.h"
#include "CommandLine/QueryCommand.h"
#include "CommandLine/SplitCommand.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TreeCommand.h"
#include "Common/ConnectorFolder.h"
#include "Connector/KNConnectorPlugin.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"

#include <QCoreApplication>

#include <algorithm>
#include <clocale>

namespace {

const char HelpText[] = "Usage: vantor-cli COMMAND [OPTIONS]\n"
                        "\n"
                        "Commands:\n"
                        "  query    run SQL on a server and write its results\n"
                        "  catalog  list and run the queries that the program itself uses\n"
                        "  tree     print the objects of a server as a tree\n"
                        "  menu     print the menu of an object\n"
                        "  script   print a script of an object: CREATE, ALTER, DROP, MySQL, ...\n"
                        "  split    print the batches of a script as JSON\n"
                        "\n"
                        "vantor-cli COMMAND --help tells more. vantor-cli --version prints the version.\n";

struct Command
{
    const char *name;
    int (*run)(const QStringList &arguments, const VantorDBCPtr &emptySettings);
};

constexpr Command Commands[] = {
    {"query", runQueryCommand}, {"catalog", runCatalogCommand}, {"tree", runTreeCommand},
    {"menu", runMenuCommand},   {"script", runScriptCommand},   {"split", runSplitCommand},
};

/// The first connector that can be used. What is wrong with the others is told.
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
    const auto *found = std::find_if(std::begin(Commands), std::end(Commands), [&](const Command &known) {
        return command == QLatin1String(known.name);
    });
    if (found == std::end(Commands)) {
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

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("vantor-cli"));
    // The width of characters on the terminal follows its locale; numbers do not.
    std::setlocale(LC_CTYPE, "");
    try {
        return run(QCoreApplication::arguments());
    } catch (const KNAssertionFailure &failure) {
        Terminal::printError(KNFormat("Internal error: %@ (%@)", failure.message(), failure.sourcePath()),
                             Terminal::Colour::Red);
        return ExitSqlError;
    }
}
