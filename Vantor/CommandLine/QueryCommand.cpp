#include "CommandLine/QueryCommand.h"

#include "CommandLine/ErrorExcerpt.h"
#include "CommandLine/ExitStatus.h"
#include "CommandLine/InterruptWatcher.h"
#include "CommandLine/QueryOptions.h"
#include "CommandLine/QueryPrinter.h"
#include "CommandLine/SampleServerProcess.h"
#include "CommandLine/Terminal.h"
#include "Database/VantorDatabaseClient.h"
#include "Foundation/KNAssert.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNQuerySplitter.h"

#include <QFile>

#include <thread>

namespace {

int fail(ExitStatus status, const QString &text)
{
    Terminal::printError(text, Terminal::Colour::Red);
    return status;
}

/// The password from the environment, which is then emptied of it, or from the terminal.
std::optional<QString> readPassword(const QString &user)
{
    constexpr char Variable[] = "VANTOR_PASSWORD";
    if (qEnvironmentVariableIsSet(Variable)) {
        const QString password = qEnvironmentVariable(Variable);
        qunsetenv(Variable);
        return password;
    }
    return Terminal::promptWithoutEcho(KNFormat("Password for %@: ", user));
}

QList<KNQueryDetails> batchesOf(const QString &text, const VantorDBC &settings)
{
    const auto splitter = settings.createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    return splitter->doSplitQuery(text);
}

/// Runs the text's batches on a thread of its own while this one writes what arrives.
int runText(VantorDatabaseClient &client, const QString &text, const QString &format,
            InterruptWatcher &interrupts)
{
    QFile output;
    if (!output.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return fail(ExitUsage, QStringLiteral("Standard output cannot be written."));
    const auto writer = ResultWriter::create(format, output);
    KNResultSetHolder holder;
    QueryPrinter printer(holder, *writer, format == QLatin1String("table"));
    holder.setReadAhead(QueryPrinter::ReadAhead);

    const QList<KNQueryDetails> batches = batchesOf(text, client.databaseConnectionDetails());
    KNError error;
    std::atomic<bool> done = false;
    std::thread worker([&] {
        try {
            client.executeQueryDetails(batches, holder, {}, &error);
        } catch (const KNAssertionFailure &failure) {
            error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, failure.message());
        }
        done = true;
    });
    interrupts.setTarget([&client] {
        KNError ignored;
        client.cancelCurrentQuery(&ignored);
    });
    if (!printer.printUntil(done)) {
        KNError ignored;
        client.cancelCurrentQuery(&ignored);
        holder.setReadAhead(0);
        for (const auto &resultSet : holder.resultSets())
            resultSet->rows().setReadAhead(0);
    }
    worker.join();
    interrupts.setTarget({});

    printer.printRest();
    if (!printer.isGood())
        return fail(ExitUsage, QStringLiteral("The results could not be written to standard output."));
    if (client.wasCancelled())
        return fail(ExitCancelled, QStringLiteral("Query was cancelled."));
    if (const QString excerpt = errorExcerpt(text, error); !excerpt.isNull())
        Terminal::printError(excerpt, Terminal::Colour::None);
    if (error && !printer.hadErrors())
        return fail(ExitSqlError, error.localizedDescription());
    return printer.hadErrors() ? ExitSqlError : ExitSuccess;
}

} // namespace

int runQueryCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    KNError error;
    const auto options = QueryOptions::parse(arguments, &error);
    if (!options)
        return fail(ExitUsage,
                    error.localizedDescription() + QStringLiteral("\nSee vantor-cli query --help."));
    if (options->showHelp) {
        fputs(QueryOptions::helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }

    SampleServerProcess sampleServer;
    emptySettings->setDatabase(options->database);
    QVariantMap sessionParameters = options->encryption;
    sessionParameters.insert(QStringLiteral("loginTimeout"), options->loginTimeout);
    emptySettings->setSessionParameters(sessionParameters);
    if (options->useSampleServer) {
        if (!sampleServer.start(&error))
            return fail(ExitNoConnection, error.localizedDescription());
        emptySettings->setHost(sampleServer.host());
        emptySettings->setUsername(sampleServer.userName());
        emptySettings->setPassword(sampleServer.password());
    } else {
        const auto password = readPassword(options->user);
        if (!password)
            return fail(ExitUsage,
                        QStringLiteral("There is no password: set VANTOR_PASSWORD, or run in a terminal."));
        emptySettings->setHost(options->server);
        emptySettings->setUsername(options->user);
        emptySettings->setPassword(*password);
    }
    const auto text = options->readText(&error);
    if (!text)
        return fail(ExitUsage, error.localizedDescription());

    InterruptWatcher interrupts(ExitCancelled);
    const auto client = emptySettings->createNewClient();
    if (!client->connect(&error))
        return fail(ExitNoConnection, error.localizedDescription());
    return runText(*client, *text, options->format, interrupts);
}
