#include "CommandLine/DesignCommand.h"

#include "CommandLine/DesignOptions.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"
#include "CommandLine/TextRunner.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "SQL/KNSQLComment.h"

#include <algorithm>

namespace {

using Steps = QList<KNDesignStep>;

/// The batches with their separators; with the cautions as comments if `hasCautions`.
QString scriptOf(const Steps &steps, bool hasCautions)
{
    QString script;
    for (const KNDesignStep &step : steps) {
        if (hasCautions && !step.caution.isEmpty())
            script += KNSQLComment::commentedOut(step.caution);
        script += step.script + QStringLiteral("\r\nGO\r\n");
    }
    return script;
}

void warn(const QString &sentence)
{
    if (!sentence.isEmpty())
        Terminal::printError(sentence, Terminal::Colour::Yellow);
}

int apply(const Steps &steps, const DesignOptions &options, const VantorDBC &settings,
          InterruptWatcher &interrupts)
{
    const bool isRisky = std::any_of(steps.begin(), steps.end(), [](const KNDesignStep &step) {
        return !step.caution.isEmpty() || !step.loss.isEmpty();
    });
    for (const KNDesignStep &step : steps)
        warn(step.caution);
    if (isRisky && !options.isForced)
        return Terminal::fail(ExitUsage, QStringLiteral("Nothing was run. --force runs it all the same."));
    int status = ExitSqlError;
    KNError error;
    VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
        [&](VantorDatabaseClient &client, KNError *) {
            status =
                runText(client, scriptOf(steps, false), QStringLiteral("table"), options.onError, interrupts);
        },
        settings, &error);
    return error ? Terminal::fail(ExitNoConnection, error.descriptionWithSuggestion()) : status;
}

int design(const DesignOptions &options, const VantorDBC &settings, InterruptWatcher &interrupts)
{
    KNError error;
    const auto table = settings.createTableDesign(options.table, &error);
    if (!table)
        return Terminal::fail(ExitUsage, error.localizedDescription());
    if (!VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [](VantorDatabaseClient &, KNError *) {}, settings, &error))
        return Terminal::fail(ExitNoConnection, error.descriptionWithSuggestion());
    const Steps steps = table->steps(options.edit, options.prefersCorrected, &error);
    if (error)
        return Terminal::fail(error.domain() == KNTableDesign::RefusedDomain ? ExitUsage : ExitSqlError,
                              error.localizedDescription());
    for (const KNDesignStep &step : steps)
        warn(step.loss);
    if (steps.isEmpty())
        return Terminal::fail(ExitSuccess, QStringLiteral("There is nothing to change."));
    if (options.isApplied)
        return apply(steps, options, settings, interrupts);
    Terminal::printText(scriptOf(steps, true).toUtf8());
    return ExitSuccess;
}

} // namespace

int runDesignCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    KNError error;
    const auto options = DesignOptions::parse(arguments, &error);
    if (!options)
        return Terminal::fail(ExitUsage, error.localizedDescription() +
                                             QStringLiteral("\nSee vantor-cli design --help."));
    if (options->showHelp) {
        fputs(DesignOptions::helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    ServerConnection connection;
    if (const ExitStatus status = connection.prepare(options->connection, emptySettings, &error))
        return Terminal::fail(status, error.localizedDescription());
    InterruptWatcher interrupts(ExitCancelled);
    return design(*options, *emptySettings, interrupts);
}
