#include "CommandLine/ImportProgress.h"

#include "CommandLine/Terminal.h"
#include "Foundation/KNFormat.h"

namespace {

QString faultText(const KNImportFault &fault)
{
    if (fault.column.isNull())
        return KNFormat("Line %llu: %@", fault.line, fault.reason);
    return KNFormat("Line %llu, column \"%@\", value \"%@\": %@", fault.line, fault.column,
                    fault.value.isNull() ? QStringLiteral("NULL") : fault.value, fault.reason);
}

QString rowsText(quint64 rows)
{
    return rows == 1 ? QStringLiteral("1 row") : KNFormat("%llu rows", rows);
}

void printFaults(const KNImportOutcome &outcome)
{
    const Terminal::ErrorLines lines;
    for (const KNImportFault &fault : outcome.faults)
        Terminal::printError(faultText(fault));
    const quint64 kept = static_cast<quint64>(outcome.faults.size());
    if (outcome.faultCount > kept)
        Terminal::printError(KNFormat("%llu more faults are not shown.", outcome.faultCount - kept));
}

} // namespace

void ImportProgress::show(const KNImportRun::Progress &progress)
{
    const auto now = Clock::now();
    if (!Terminal::isErrorTerminal() || now - m_drawn < std::chrono::milliseconds(200))
        return;
    m_drawn = now;
    m_isVisible = true;
    const double seconds = std::chrono::duration<double>(now - m_start).count();
    const double left = progress.fraction > 0 ? seconds / progress.fraction - seconds : 0;
    fprintf(stderr, "\r\033[K%llu rows, %.0f rows/s, %llu refused, %.0f %%, %.0f s left",
            static_cast<unsigned long long>(progress.rows), double(progress.rows) / seconds,
            static_cast<unsigned long long>(progress.faults), progress.fraction * 100, left);
    fflush(stderr);
}

void ImportProgress::clear()
{
    if (m_isVisible)
        fputs("\r\033[K", stderr);
    m_isVisible = false;
}

int ImportProgress::printOutcome(const KNImportOutcome &outcome, const KNImportPlan &plan, bool isDryRun)
{
    if (outcome.wasCancelled)
        return Terminal::fail(ExitCancelled, QStringLiteral("Cancelled. Nothing was imported."));
    if (outcome.error) {
        const bool isOfFile = outcome.error.domain() == QLatin1String("com.quorvex.vantor.import");
        return Terminal::fail(isOfFile ? ExitUsage : ExitSqlError, outcome.error.descriptionWithSuggestion());
    }
    if (isDryRun) {
        printFaults(outcome);
        Terminal::printError(
            KNFormat("%@ can be imported, %@ cannot.", rowsText(outcome.rows), rowsText(outcome.faultCount)));
        return outcome.faultCount == 0 ? ExitSuccess : ExitUsage;
    }
    Terminal::printError(KNFormat("%@ imported.", rowsText(outcome.rows)));
    if (outcome.faultCount > 0)
        Terminal::printError(KNFormat("%@ refused: see %@.", rowsText(outcome.faultCount), plan.faultFile),
                             Terminal::Colour::Yellow);
    return ExitSuccess;
}
