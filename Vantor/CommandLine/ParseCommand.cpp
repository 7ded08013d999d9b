#include "CommandLine/ParseCommand.h"

#include "CommandLine/CommandArguments.h"
#include "CommandLine/InterruptWatcher.h"
#include "CommandLine/QueryPrinter.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/StandardOutput.h"
#include "CommandLine/TextInput.h"
#include "Database/KNSyntaxCheck.h"
#include "Export/ResultFormat.h"
#include "SQL/KNQuerySplitter.h"

#include <QCommandLineParser>

namespace {

int parseText(const QString &text, VantorDatabaseClient &client, InterruptWatcher &interrupts)
{
    const VantorDBC &settings = client.databaseConnectionDetails();
    const auto splitter = settings.createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    KNSyntaxCheck check(settings.syntaxCheckRules());
    KNResultSetHolder results;
    KNError error;
    interrupts.setTarget([&] {
        KNError ignored;
        client.cancelCurrentQuery(&ignored);
    });
    check.run(splitter->doSplitQuery(text), client, results, &error);
    interrupts.setTarget({});
    if (client.wasCancelled())
        return Terminal::fail(ExitCancelled, QStringLiteral("The check was cancelled."));

    StandardOutput output;
    const auto writer = ResultFormat::named(QStringLiteral("csv"))->createWriter({.device = output});
    QueryPrinter printer(results, *writer, text, false);
    printer.printUntil(true);
    printer.printRest();
    if (error && !printer.hadErrors())
        return Terminal::fail(ExitSqlError, error.localizedDescription());
    if (check.hadErrors())
        return ExitSqlError;
    if (!check.unchecked().isEmpty())
        return Terminal::fail(ExitSqlError, check.summary());
    Terminal::printLine(check.summary());
    return ExitSuccess;
}

void addParseArguments(QCommandLineParser &parser)
{
    parser.setApplicationDescription(
        QStringLiteral("Has a server check the syntax of a script, without running it. Names are not looked "
                       "up. Errors give the line in the whole file."));
    ConnectionOptions::addTo(parser);
    parser.addOption({{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")});
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The script; - is standard input."));
}

} // namespace

int runParseCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    QCommandLineParser parser;
    addParseArguments(parser);
    CommandArguments command(parser, "parse");
    const auto options = command.parseForServer(arguments);
    if (!options)
        return command.exitStatus();
    if (parser.positionalArguments().size() != 1)
        return command.fail(QStringLiteral("Give one file."));
    KNError error;
    const auto text = readTextInput(parser.positionalArguments().constFirst(), &error);
    if (!text)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    return ServerConnection::run(*options, emptySettings,
                                 [&](VantorDatabaseClient &client, InterruptWatcher &interrupts) {
                                     return parseText(*text, client, interrupts);
                                 });
}
