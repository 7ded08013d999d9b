#include "Results/KNDistinctValues.h"

#include "Database/KNRowReader.h"
#include "Results/KNRowSortKey.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr qsizetype RowsPerCheck = 1024; // rows between two checks for cancellation

} // namespace

std::optional<KNDistinctValues> KNDistinctValues::of(const KNDatabaseResultSet &result, qsizetype column,
                                                     const KNCellMatcher::Display &display,
                                                     const std::atomic<bool> &cancelled)
{
    KNDistinctValues distinct;
    QSet<QString> known;
    std::vector<std::pair<KNRowSortKey, QString>> values;
    qsizetype characters = 0;
    KNRowReader reader(result.rows());
    const qsizetype rows = result.rows().rowCount();
    for (qsizetype row = 0; row < rows && distinct.areAll; ++row) {
        if (row % RowsPerCheck == 0 && cancelled)
            return std::nullopt;
        const KNRowCell cell = reader.cell(row, column);
        const QString text = display(cell, column);
        if (text.isNull()) {
            distinct.hasNull = true;
        } else if (!known.contains(text)) {
            known.insert(text);
            values.emplace_back(KNRowSortKey(cell), text);
            characters += text.size();
            distinct.areAll = known.size() <= MostValues && characters <= MostCharacters;
        }
    }
    if (cancelled)
        return std::nullopt;
    if (!distinct.areAll)
        values.pop_back();
    std::sort(values.begin(), values.end(), [](const auto &left, const auto &right) {
        return KNRowSortKey::compared(left.first, right.first) < 0;
    });
    for (const auto &[key, text] : values)
        distinct.texts.append(text);
    return distinct;
}
