#include "CommandLine/QueryCommand.h"

#include "CommandLine/QueryOptions.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TextRunner.h"

int runQueryCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    KNError error;
    const auto options = QueryOptions::parse(arguments, &error);
    if (!options)
        return Terminal::fail(ExitUsage, error.localizedDescription() +
                                             QStringLiteral("\nSee vantor-cli query --help."));
    if (options->showHelp) {
        fputs(QueryOptions::helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    ServerConnection connection;
    if (const ExitStatus status = connection.prepare(options->connection, emptySettings, &error))
        return Terminal::fail(status, error.localizedDescription());
    const auto text = options->readText(&error);
    if (!text)
        return Terminal::fail(ExitUsage, error.localizedDescription());

    InterruptWatcher interrupts(ExitCancelled);
    if (const ExitStatus status = connection.connect(&error))
        return Terminal::fail(status, error.descriptionWithSuggestion());
    return runText(connection.client(), *text, options->format, options->onError, interrupts);
}
