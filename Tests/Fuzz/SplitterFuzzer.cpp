#include "Fuzz/Fuzzer.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "SQL/KNQuerySplitter.h"

/// Batches stand in the text where their ranges say, in order, and nothing is lost but separators: a batch
/// that is split again alone is one batch.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QString text = fuzzText(data, size);
    const auto splitter = MSSQLDatabaseConnectionDetails().createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    qsizetype end = 0;
    const auto batches = splitter->doSplitQuery(text);
    for (const KNQueryDetails &batch : batches) {
        require(batch.queryRange.location >= end);
        end = batch.queryRange.location + batch.queryRange.length;
        require(end <= text.size());
        const QString part = text.mid(batch.queryRange.location, batch.queryRange.length);
        require(part.trimmed() == batch.targetQuery && !batch.targetQuery.isEmpty());
        require(batch.repeatCount > 0);
        const auto lines = text.left(batch.queryRange.location).count(QLatin1Char('\n'));
        require(batch.lineNumberOffset == quint64(lines));
        const auto again = splitter->doSplitQuery(part);
        require(again.size() == 1 && again.constFirst().targetQuery == batch.targetQuery);
    }
    return 0;
}
