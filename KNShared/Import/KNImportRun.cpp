#include "Import/KNImportRun.h"

#include "Import/KNImportRowConverter.h"
#include "Import/KNImportTransaction.h"

#include <algorithm>

namespace {

constexpr qsizetype LargestChunk = 1024 * 1024; // in UTF-16 units
constexpr quint64 RowsPerReport = 1000;

qsizetype textSize(const KNImportRow &row)
{
    qsizetype size = 0;
    for (const QString &value : row.values)
        size += value.size();
    return size;
}

} // namespace

KNImportRun::KNImportRun(KNImportPlan plan)
    : m_plan(std::move(plan))
{
}

KNImportRun::~KNImportRun() = default;

KNImportOutcome KNImportRun::dryRun(const KNDatabaseImportHelper &helper, const Report &report)
{
    const KNImportRowConverter converter(m_plan, helper);
    KNError error;
    quint64 rows = 0;
    if (prepare(converter, &error))
        readRows(
            converter,
            [&rows](const Chunk &chunk, KNError *) {
                rows += chunk.size();
                return true;
            },
            false, report, &error);
    if (error || m_isCancelled)
        m_faults.removeFile();
    else
        m_faults.closeFile(&error);
    return outcome(error, rows, m_isCancelled);
}

KNImportOutcome KNImportRun::run(VantorDatabaseClient &client, const KNDatabaseImportHelper &helper,
                                 const Report &report)
{
    const KNImportRowConverter converter(m_plan, helper);
    KNImportTransaction transaction(client, m_plan, helper, converter, m_faults);
    KNError error;
    bool isCommitted = false;
    if (prepare(converter, &error)) {
        setClient(&client);
        isCommitted = import(transaction, converter, report, &error);
    }
    return outcome(error, transaction.insertedRows(), m_isCancelled && !isCommitted);
}

bool KNImportRun::prepare(const KNImportRowConverter &converter, KNError *error)
{
    *error = converter.error();
    return !*error &&
           (m_plan.faultFile.isNull() || m_faults.openFile(m_plan.faultFile, m_plan.fileColumns, error));
}

/// Whether the rows were committed. A cancel must not interrupt the commit or the rollback: the client is out
/// of its reach before them.
bool KNImportRun::import(KNImportTransaction &transaction, const KNImportRowConverter &converter,
                         const Report &report, KNError *error)
{
    bool isComplete = transaction.begin(error);
    if (isComplete) {
        readRows(
            converter,
            [&](const Chunk &chunk, KNError *failure) { return transaction.insert(chunk, failure); },
            m_plan.faultFile.isNull(), report, error);
        isComplete = !*error;
    }
    setClient(nullptr);
    if (isComplete && !m_isCancelled && m_faults.closeFile(error) && transaction.commit(error))
        return true;
    transaction.rollBack();
    m_faults.removeFile();
    return false;
}

void KNImportRun::readRows(const KNImportRowConverter &converter, const Send &send, bool stopsAtFault,
                           const Report &report, KNError *error)
{
    const auto reader = KNImportFormat::open(m_plan.file, error);
    if (!reader)
        return;
    Chunk chunk;
    qsizetype chunkSize = 0;
    quint64 rows = 0;
    const auto flush = [&] {
        const bool isSent = chunk.empty() || send(chunk, error);
        chunk.clear();
        chunkSize = 0;
        if (report)
            report({rows, m_faults.count(), reader->progress()});
        return isSent;
    };
    const auto most =
        static_cast<size_t>(std::clamp<qsizetype>(m_plan.batchRows, 1, KNImportPlan::MostBatchRows));
    KNImportedRow next;
    KNImportFault fault;
    while (!m_isCancelled && reader->readRow(&next.row, error)) {
        ++rows;
        if (!converter.convert(next.row, &next.values, &fault)) {
            if (!addFault(fault, next.row, stopsAtFault, error))
                return;
            if (report && rows % RowsPerReport == 0)
                report({rows, m_faults.count(), reader->progress()});
            continue;
        }
        chunkSize += textSize(next.row);
        chunk.push_back(std::move(next));
        if ((chunk.size() >= most || chunkSize >= LargestChunk) && !flush())
            return;
    }
    if (!*error && !m_isCancelled)
        flush();
}

/// Keeps a fault; false if it ends the run.
bool KNImportRun::addFault(const KNImportFault &fault, const KNImportRow &row, bool isLast, KNError *error)
{
    if (!m_faults.add(fault, row.values, error))
        return false;
    if (!isLast)
        return true;
    const QString where =
        fault.column.isNull()
            ? tr("Line %1: %2").arg(fault.line).arg(fault.reason)
            : tr("Line %1, column \"%2\": %3").arg(QString::number(fault.line), fault.column, fault.reason);
    *error =
        KNError(QStringLiteral("com.quorvex.vantor.import"), 0, tr("%1\nNothing was imported.").arg(where));
    return false;
}

KNImportOutcome KNImportRun::outcome(const KNError &error, quint64 rows, bool wasCancelled) const
{
    KNImportOutcome outcome;
    outcome.wasCancelled = wasCancelled;
    outcome.error = wasCancelled ? KNError() : error;
    outcome.rows = rows;
    outcome.faults = m_faults.first();
    outcome.faultCount = m_faults.count();
    return outcome;
}

void KNImportRun::setClient(VantorDatabaseClient *client)
{
    const std::lock_guard lock(m_mutex);
    m_client = client;
}

void KNImportRun::cancel()
{
    m_isCancelled = true;
    const std::lock_guard lock(m_mutex);
    KNError ignored;
    if (m_client)
        m_client->cancelCurrentQuery(&ignored);
}
