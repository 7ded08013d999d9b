#include "CommandLine/ParseCommand.h"

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
    const QString hint = QStringLiteral("\nSee vantor-cli parse --help.");
    if (!parser.parse(QStringList{QStringLiteral("vantor-cli parse")} + arguments))
        return Terminal::fail(ExitUsage, parser.errorText() + hint);
    if (parser.isSet(QStringLiteral("help"))) {
        fputs((parser.helpText() + ConnectionOptions::helpText()).toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    KNError error;
    const auto options = ConnectionOptions::from(parser, &error);
    if (!options)
        return Terminal::fail(ExitUsage, error.localizedDescription() + hint);
    if (!options->namesServer())
        return Terminal::fail(ExitUsage, QStringLiteral("Give either --server or --sample.") + hint);
    if (parser.positionalArguments().size() != 1)
        return Terminal::fail(ExitUsage, QStringLiteral("Give one file.") + hint);
    const auto text = readTextInput(parser.positionalArguments().constFirst(), &error);
    if (!text)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    ServerConnection connection;
    if (const ExitStatus status = connection.prepare(*options, emptySettings, &error))
        return Terminal::fail(status, error.localizedDescription());
    InterruptWatcher interrupts(ExitCancelled);
    if (const ExitStatus status = connection.connect(&error))
        return Terminal::fail(status, error.descriptionWithSuggestion());
    return parseText(*text, connection.client(), interrupts);
}
