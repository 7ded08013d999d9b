#include "Import/KNImportHeaderReader.h"

#include <utility>

bool KNImportHeaderReader::readHeader(bool isFirstRow, const QString &emptyText, KNError *error)
{
    KNImportRow first;
    if (!nextRow(&first, error)) {
        if (!*error)
            *error = fileError(emptyText);
        return false;
    }
    if (isFirstRow && !first.problem.isNull()) {
        *error = errorAt(first.line, 0, first.problem);
        return false;
    }
    m_columns = uniqueNames(isFirstRow ? first.values : QStringList(first.values.size()));
    if (!isFirstRow)
        m_first = first;
    return true;
}

bool KNImportHeaderReader::takeRow(KNImportRow *row, KNError *error)
{
    if (!m_first)
        return nextRow(row, error);
    *row = *std::exchange(m_first, std::nullopt);
    return true;
}
