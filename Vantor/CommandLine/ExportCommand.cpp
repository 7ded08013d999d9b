#include "CommandLine/ExportCommand.h"

#include "CommandLine/ExportOptions.h"
#include "CommandLine/InterruptWatcher.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"

#include <atomic>

namespace {

int exportScripts(const ExportOptions &options, const VantorDBC &settings, InterruptWatcher &interrupts)
{
    const auto scripter = settings.createDatabaseScripter();
    if (!scripter)
        return Terminal::fail(ExitUsage, QStringLiteral("This kind of server has no export."));
    std::atomic<bool> isCancelled = false;
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
    scripts.path = options.target;
    scripts.kind = KNScriptTarget::kindFor(options.target);
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
    return ServerConnection::run(options->connection, emptySettings,
                                 [&](VantorDatabaseClient &, InterruptWatcher &interrupts) {
                                     return exportScripts(*options, *emptySettings, interrupts);
                                 });
}
