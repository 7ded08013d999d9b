#pragma once

#include "Import/KNImportFaults.h"
#include "Import/KNImportPlan.h"

#include <atomic>
#include <functional>
#include <mutex>

class KNImportRowConverter;
class KNImportTransaction;
class VantorDatabaseClient;
struct KNImportedRow;

/// The outcome of an import or of a dry run.
struct KNImportOutcome
{
    KNError error; ///< nothing was imported; not set on success and after a cancel
    bool wasCancelled = false;
    quint64 rows = 0;            ///< imported; in a dry run those that could be converted
    QList<KNImportFault> faults; ///< the first KNImportFaults::MostKept
    quint64 faultCount = 0;

    bool succeeded() const { return !error && !wasCancelled; }
};

/// Reads a file row by row, converts the rows and sends them in chunks, all in one transaction. Needs little
/// memory whatever the size of the file.
class KNSHARED_EXPORT KNImportRun
{
    Q_DECLARE_TR_FUNCTIONS(KNImportRun)

public:
    struct Progress
    {
        quint64 rows = 0; ///< that were read
        quint64 faults = 0;
        double fraction = 0; ///< of the file, from 0 to 1
    };
    /// Called on the thread of the run after each chunk.
    using Report = std::function<void(const Progress &progress)>;

    explicit KNImportRun(KNImportPlan plan);
    ~KNImportRun();
    KNImportRun(const KNImportRun &) = delete;
    KNImportRun &operator=(const KNImportRun &) = delete;

    /// Converts all rows and reports the faults, without a server. Blocks on the file.
    KNImportOutcome dryRun(const KNDatabaseImportHelper &helper, const Report &report = {});
    /// Imports the rows. Without a file for faults the first one ends the import. Blocks; call it once.
    KNImportOutcome run(VantorDatabaseClient &client, const KNDatabaseImportHelper &helper,
                        const Report &report = {});
    /// Ends the run; what it has sent is rolled back. Blocks until the current statement has ended. Any
    /// thread except that of the run.
    void cancel();

private:
    using Chunk = std::vector<KNImportedRow>;
    using Send = std::function<bool(const Chunk &chunk, KNError *error)>;

    void readRows(const KNImportRowConverter &converter, const Send &send, bool stopsAtFault,
                  const Report &report, KNError *error);
    bool addFault(const KNImportFault &fault, const KNImportRow &row, bool isLast, KNError *error);
    bool prepare(const KNImportRowConverter &converter, KNError *error);
    bool import(KNImportTransaction &transaction, const KNImportRowConverter &converter, const Report &report,
                KNError *error);
    KNImportOutcome outcome(const KNError &error, quint64 rows, bool wasCancelled) const;
    void setClient(VantorDatabaseClient *client);

    const KNImportPlan m_plan;
    KNImportFaults m_faults;
    std::atomic<bool> m_isCancelled = false;
    std::mutex m_mutex;
    VantorDatabaseClient *m_client = nullptr; ///< while a cancel may interrupt it; guarded by m_mutex
};
