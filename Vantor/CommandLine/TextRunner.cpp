#include "CommandLine/TextRunner.h"

#include "CommandLine/ExitStatus.h"
#include "CommandLine/QueryPrinter.h"
#include "CommandLine/StandardOutput.h"
#include "CommandLine/Terminal.h"
#include "Database/KNMessageText.h"
#include "Export/ResultFormat.h"
#include "Foundation/KNAssert.h"
#include "SQL/KNQuerySplitter.h"

#include <new>
#include <thread>

namespace {

QList<KNQueryDetails> batchesOf(const QString &text, const VantorDBC &settings)
{
    const auto splitter = settings.createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    return splitter->doSplitQuery(text);
}

/// Prints results until the run has finished. False if printing stopped earlier because the reader closed the
/// output or memory was exhausted.
bool printResults(QueryPrinter &printer, const std::atomic<bool> &done, bool *isOutOfMemory)
{
    try {
        return printer.printUntil(done);
    } catch (const std::bad_alloc &) {
        *isOutOfMemory = true;
        return false;
    }
}

/// A cancel between two batches finds nothing to stop, so it is repeated.
void cancelUntil(const std::atomic<bool> &done, VantorDatabaseClient &client)
{
    while (!done) {
        KNError ignored;
        client.cancelCurrentQuery(&ignored);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

} // namespace

int runText(VantorDatabaseClient &client, const QString &text, const QString &format, KNOnError onError,
            InterruptWatcher &interrupts)
{
    StandardOutput output;
    const auto writer = ResultFormat::named(format)->createWriter({.device = output, .hasManyResults = true});
    KNResultSetHolder holder;
    QueryPrinter printer(holder, *writer, text, format == QLatin1String("table"));
    holder.setReadAhead(QueryPrinter::ReadAhead);
    holder.setResultReadAhead(QueryPrinter::ResultReadAhead);

    const QList<KNQueryDetails> batches = batchesOf(text, client.databaseConnectionDetails());
    KNScriptRun script(onError);
    script.setIsCancelled([&] { return printer.isStopped() || !printer.isGood(); });
    KNError error;
    std::atomic<bool> done = false;
    std::thread worker([&] {
        try {
            script.run(batches, client, holder, &error);
        } catch (const KNAssertionFailure &failure) {
            error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, failure.message());
        }
        done = true;
    });
    interrupts.setTarget([&] {
        printer.stop();
        output.abandon();
        KNError ignored;
        client.cancelCurrentQuery(&ignored);
    });
    bool isOutOfMemory = false;
    if (!printResults(printer, done, &isOutOfMemory)) {
        holder.setResultReadAhead(0);
        cancelUntil(done, client);
    }
    worker.join();
    interrupts.setTarget({});
    if (isOutOfMemory)
        return Terminal::fail(ExitSqlError,
                              QStringLiteral("There is not enough memory to print the results."));

    printer.printRest();
    if (printer.isStopped() || (printer.isGood() && client.wasCancelled()))
        return Terminal::fail(ExitCancelled, QStringLiteral("Query was cancelled."));
    if (!printer.isGood())
        return Terminal::fail(ExitUsage,
                              QStringLiteral("The results could not be written to standard output."));
    if (const qint64 count = KNScriptRun::countOf(script.notRun()))
        Terminal::printError(KNMessageText::batchesNotRun(count), Terminal::Colour::Yellow);
    if (error && !printer.hadErrors())
        return Terminal::fail(ExitSqlError, error.localizedDescription());
    return printer.hadErrors() ? ExitSqlError : ExitSuccess;
}
