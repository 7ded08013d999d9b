#include "Desktop/Query/QueryBatches.h"

#include "SQL/KNQuerySplitter.h"

namespace {

QList<KNQueryDetails> split(const QString &text, const VantorDBC &details)
{
    const auto splitter = details.createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    return splitter->doSplitQuery(text);
}

/// The last batch that begins before the position, or the first one.
QList<KNQueryDetails> batchAt(qsizetype location, const QList<KNQueryDetails> &batches)
{
    if (batches.isEmpty())
        return {};
    qsizetype found = 0;
    while (found + 1 < batches.size() && batches[found + 1].queryRange.location <= location)
        ++found;
    return {batches[found]};
}

} // namespace

QList<KNQueryDetails> batchesOf(const QueryRequest &request, const VantorDBC &details)
{
    if (request.part == QueryRequest::Part::Everything)
        return split(request.text, details);
    if (request.part == QueryRequest::Part::Batches)
        return request.batches;
    if (request.part == QueryRequest::Part::BatchAt)
        return batchAt(request.range.location, split(request.text, details));
    const KNRange range = request.range;
    QList<KNQueryDetails> batches = split(request.text.mid(range.location, range.length), details);
    const auto linesBefore =
        static_cast<quint64>(QStringView(request.text).left(range.location).count(QLatin1Char('\n')));
    for (KNQueryDetails &batch : batches) {
        batch.queryRange.location += range.location;
        batch.lineNumberOffset += linesBefore;
    }
    return batches;
}

QString textOf(const QueryRequest &request)
{
    switch (request.part) {
    case QueryRequest::Part::Range:
        return request.text.mid(request.range.location, request.range.length);
    case QueryRequest::Part::Batches: {
        QStringList batches;
        for (const KNQueryDetails &batch : request.batches)
            batches.append(batch.targetQuery);
        return batches.join(QStringLiteral("\nGO\n"));
    }
    case QueryRequest::Part::Everything:
    case QueryRequest::Part::BatchAt:
        break;
    }
    return request.text;
}
