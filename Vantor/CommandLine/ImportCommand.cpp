#include "CommandLine/ImportCommand.h"

#include "CommandLine/ImportPlanning.h"
#include "CommandLine/ImportProgress.h"
#include "CommandLine/InterruptWatcher.h"
#include "CommandLine/ServerConnection.h"
#include "CommandLine/Terminal.h"
#include "Foundation/KNFormat.h"
#include "Import/KNImportRun.h"

#include <algorithm>

namespace {

using Columns = QList<KNImportTableColumnModel>;

/// One run of the command: reads the file, finds or creates the table, and imports.
class ImportCommand
{
public:
    ImportCommand(const ImportOptions &options, const VantorDBC &settings, VantorDatabaseClient &client)
        : m_options(options)
        , m_helper(settings.createDatabaseImportHelper())
        , m_client(client)
    {
    }

    int run(InterruptWatcher &interrupts)
    {
        KNError error;
        if (!m_helper)
            return Terminal::fail(ExitUsage, QStringLiteral("This kind of server has no import."));
        m_path = m_helper->pathFromText(m_options.table, &error);
        if (error)
            return Terminal::fail(ExitUsage, error.localizedDescription());
        if (const int status = analyse(interrupts))
            return status;
        const auto columns = m_options.createsTable ? newColumns() : existingColumns(&error);
        const auto plan =
            error ? std::nullopt
                  : ImportPlanning::plan(m_options, m_analysis.columnNames(), m_path, columns, &error);
        if (!plan)
            return Terminal::fail(ExitUsage, error.localizedDescription());
        noteColumns(columns, *plan);
        if (m_options.createsTable && !m_options.isDryRun && !createTable(columns, &error))
            return Terminal::fail(ExitSqlError, error.localizedDescription());
        return import(*plan, interrupts);
    }

private:
    /// The whole file for the types of a new table, and the first rows for the names of the columns.
    int analyse(InterruptWatcher &interrupts)
    {
        const bool readsAll = m_options.createsTable || KNImportFormat::of(m_options.file)->addsColumns();
        const quint64 rows = readsAll ? m_options.analysedRows : 1;
        std::atomic<bool> isCancelled = false;
        interrupts.setTarget([&] { isCancelled = true; });
        m_analysis = KNImportFileAnalysis::read(m_options.file, rows, isCancelled);
        interrupts.setTarget({});
        if (isCancelled)
            return Terminal::fail(ExitCancelled, QStringLiteral("Cancelled. Nothing was imported."));
        // Faults behind the columns are reported by the import with the rows before them.
        if (m_analysis.error && (m_options.createsTable || m_analysis.columns.isEmpty()))
            return Terminal::fail(ExitUsage, m_analysis.error.localizedDescription());
        if (!m_analysis.assumedEncoding.isNull())
            note(KNFormat("The file is not UTF-8 and is read as %@. --encoding chooses another encoding.",
                          m_analysis.assumedEncoding));
        if (readsAll && !m_analysis.isComplete && !m_analysis.error)
            note(KNFormat(m_options.createsTable
                              ? "Only the first %llu rows were analysed: values of later rows may not fit "
                                "their columns."
                              : "Only the first %llu rows were analysed: a later row with another key is a "
                                "fault.",
                          m_analysis.rows));
        return ExitSuccess;
    }

    static void note(const QString &text) { Terminal::printError(text, Terminal::Colour::Yellow); }

    /// Says which columns are likely to fail or to lose characters, before the import.
    void noteColumns(const Columns &columns, const KNImportPlan &plan) const
    {
        if (!m_options.createsTable)
            for (const QString &name : KNImportMapping::unfilledColumns(columns, plan.columns))
                note(KNFormat("Column \"%@\" gets no value, but takes no NULL and has no default.", name));
        for (const QString &name : KNImportMapping::uncheckedColumns(plan.columns, *m_helper))
            note(KNFormat("The code page of column \"%@\" is not known: the server replaces characters "
                          "that it does not have.",
                          name));
    }

    Columns newColumns() const
    {
        const QStringList proposals = m_helper->mapDataTypes(m_analysis.columns);
        for (qsizetype i = 0; i < proposals.size(); ++i) {
            const KNImportTypeHint hint = m_helper->hintForType(proposals[i], m_analysis.columns[i]);
            if (!hint.text.isNull())
                note(KNFormat("Column \"%@\" becomes %@ instead of %@. %@", m_analysis.columns[i].name,
                              hint.type, proposals[i], hint.text));
        }
        return KNImportMapping::newColumns(m_analysis.columns, *m_helper, true);
    }

    /// The columns of the table that the path names; without a schema it must be the only one of its name.
    Columns existingColumns(KNError *error)
    {
        QList<KNImportTableModelPtr> found;
        const auto tables = m_helper->tablesForImportMapper();
        for (const KNImportTableModelPtr &table : tables) {
            const QStringList path = table->tablePath();
            const bool isSameTable = path.last().compare(m_path.last(), Qt::CaseInsensitive) == 0;
            if (isSameTable &&
                (m_path.size() == 1 || path.first().compare(m_path.first(), Qt::CaseInsensitive) == 0))
                found.append(table);
        }
        if (found.size() == 1) {
            m_path = found.first()->tablePath();
            return found.first()->columns();
        }
        *error = KNError(
            QStringLiteral("com.quorvex.vantor.cli"), 0,
            found.isEmpty()
                ? KNFormat("There is no table \"%@\". --create creates it.", m_options.table)
                : KNFormat("%ld tables are named \"%@\": name the schema.", found.size(), m_options.table));
        return {};
    }

    bool createTable(const Columns &columns, KNError *error)
    {
        Columns used;
        for (const KNImportTableColumnModel &column : columns) {
            if (!m_options.skipped.contains(column.name, Qt::CaseInsensitive))
                used.append(column);
        }
        m_client.executeNonQuery(m_helper->creationStatement(m_path, used), error);
        return !*error;
    }

    int import(const KNImportPlan &plan, InterruptWatcher &interrupts)
    {
        KNImportRun importRun(plan);
        ImportProgress progress;
        const auto report = [&progress](const KNImportRun::Progress &now) { progress.show(now); };
        interrupts.setTarget([&importRun] { importRun.cancel(); });
        const KNImportOutcome outcome = m_options.isDryRun ? importRun.dryRun(*m_helper, report)
                                                           : importRun.run(m_client, *m_helper, report);
        interrupts.setTarget({});
        progress.clear();
        if (!outcome.succeeded() && m_options.createsTable && !m_options.isDryRun)
            note(QStringLiteral("The table was created and is empty."));
        return ImportProgress::printOutcome(outcome, plan, m_options.isDryRun);
    }

    const ImportOptions &m_options;
    const std::unique_ptr<KNDatabaseImportHelper> m_helper;
    VantorDatabaseClient &m_client;
    QStringList m_path; ///< of the table
    KNImportFileAnalysis m_analysis;
};

} // namespace

int runImportCommand(const QStringList &arguments, const VantorDBCPtr &emptySettings)
{
    KNError error;
    const auto options = ImportOptions::parse(arguments, &error);
    if (!options)
        return Terminal::fail(ExitUsage, error.localizedDescription() +
                                             QStringLiteral("\nSee vantor-cli import --help."));
    if (options->showHelp) {
        fputs(ImportOptions::helpText().toLocal8Bit().constData(), stdout);
        return ExitSuccess;
    }
    return ServerConnection::run(options->connection, emptySettings,
                                 [&](VantorDatabaseClient &client, InterruptWatcher &interrupts) {
                                     return ImportCommand(*options, *emptySettings, client).run(interrupts);
                                 });
}
