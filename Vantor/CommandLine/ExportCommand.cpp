#include "CommandLine/ExportCommand.h"

#include "CommandLine/ExportOptions.h"
#include "CommandLine/InterruptWatcher.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"

#include <atomic>

namespace {

int exportScripts(const ExportOptions &options, const VantorDBC &settings)
{
    const auto scripter = settings.createDatabaseScripter();
    if (!scripter)
        return Terminal::fail(ExitUsage, QStringLiteral("This kind of server has no export."));
    std::atomic<bool> isCancelled = false;
    InterruptWatcher interrupts(ExitCancelled);
    interrupts.setTarget([&] { isCancelled = true; });
    KNError error;
    const QList<KNScriptObject> objects = scripter->objects(&error);
    if (error)
        return Terminal::fail(ExitSqlError, error.localizedDescription());
    KNScriptExport scripts;
    scripts.objects = options.chosen(objects, &error);
    if (error)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    scripts.options = options.scripts;
    scripts.target = options.target;
    scripts.isFolder = options.isFolder;
    error = scripts.run(*scripter, {}, [&] { return isCancelled.load(); });
    interrupts.setTarget({});
    if (isCancelled)
        return Terminal::fail(ExitCancelled, QStringLiteral("Cancelled. Nothing was written."));
    return error ? Terminal::fail(ExitSqlError, error.descriptionWithSuggestion()) : ExitSuccess;
}

} // namespace

int runExportCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    KNError error;
    const auto options = ExportOptions::parse(arguments, &error);
    if (!options)
        return Terminal::fail(ExitUsage, error.localizedDescription() +
                                             QStringLiteral("\nSee vantor-cli export --help."));
    if (options->showHelp) {
        fputs(ExportOptions::helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    ServerConnection connection;
    ExitStatus status = connection.prepare(options->connection, emptySettings, &error);
    if (status == ExitSuccess)
        status = connection.connect(&error);
    if (status != ExitSuccess)
        return Terminal::fail(status, error.descriptionWithSuggestion());
    return exportScripts(*options, *emptySettings);
}
