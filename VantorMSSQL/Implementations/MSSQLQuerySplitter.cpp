#include "Implementations/MSSQLQuerySplitter.h"

namespace {

/// Enough for callers that only need the batches near the start.
constexpr qsizetype PartialSplitLength = 10000;

bool isBlank(QChar character)
{
    return character.isSpace() || character == QChar(QChar::ByteOrderMark);
}

qsizetype lengthOfLead(QStringView text)
{
    const auto *first = std::find_if_not(text.begin(), text.end(), isBlank);
    return first - text.begin();
}

} // namespace

QList<KNQueryDetails> MSSQLQuerySplitter::doSplitQuery(const QString &text)
{
    const QStringView whole(text);
    const QStringView part = requiresFullSplit() ? whole : whole.left(PartialSplitLength);
    QList<KNQueryDetails> queries;
    quint64 linesPassed = 0;
    qsizetype counted = 0; // the position up to which lines are counted
    const auto batches = splitMSSQLQueries2(part, sqlPreParseOptions());
    for (const Batch &batch : batches) {
        if (cancelled())
            break;
        const qsizetype lead = lengthOfLead(batch.text);
        const KNRange range{batch.location + lead, batch.text.size() - lead};
        linesPassed += part.mid(counted, range.location - counted).count(QLatin1Char('\n'));
        counted = range.location;
        if (range.length > 0 && batch.repeatCount > 0) {
            const QString query = part.mid(range.location, range.length).trimmed().toString();
            queries.append({query, range, linesPassed, batch.repeatCount});
        }
    }
    return queries;
}
