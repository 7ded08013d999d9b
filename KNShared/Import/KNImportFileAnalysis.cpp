#include "Import/KNImportFileAnalysis.h"

namespace {

constexpr quint64 RowsPerStep = 1000;

KNImportRow cutForPreview(const KNImportRow &row)
{
    constexpr qsizetype LongestText = 200;
    KNImportRow cut = row;
    for (QString &value : cut.values) {
        if (value.size() > LongestText)
            value = value.left(LongestText) + QChar(0x2026);
    }
    return cut;
}

void addRow(const KNImportRow &row, KNImportFileAnalysis *analysis)
{
    const qsizetype known = analysis->columns.size();
    for (qsizetype i = 0; i < known; ++i)
        analysis->columns[i].add(row.values.value(i));
    for (qsizetype i = known; i < row.values.size(); ++i) { // a key that no earlier row had
        KNImportColumnAnalysis column;
        column.addNulls(analysis->rows);
        column.add(row.values[i]);
        analysis->columns.append(column);
    }
}

} // namespace

QStringList KNImportFileAnalysis::columnNames() const
{
    QStringList names;
    for (const KNImportColumnAnalysis &column : columns)
        names.append(column.name);
    return names;
}

KNImportFileAnalysis KNImportFileAnalysis::read(const KNImportFile &file, quint64 mostRows,
                                                const std::atomic<bool> &isCancelled,
                                                const std::function<void(double)> &progress)
{
    KNImportFileAnalysis analysis;
    const auto reader = KNImportFormat::open(file, &analysis.error);
    if (!reader)
        return analysis;
    analysis.assumedEncoding = reader->assumedEncoding();
    analysis.columns.resize(reader->columns().size());
    KNImportRow row;
    bool isThere = true;
    while (analysis.rows < mostRows && !isCancelled) {
        isThere = reader->readRow(&row, &analysis.error);
        if (!isThere)
            break;
        if (analysis.preview.size() < PreviewRows)
            analysis.preview.append(cutForPreview(row));
        if (row.problem.isNull())
            addRow(row, &analysis);
        ++analysis.rows;
        if (progress && analysis.rows % RowsPerStep == 0)
            progress(reader->progress());
    }
    analysis.isComplete = !isThere && !analysis.error;
    const QStringList names = reader->columns();
    analysis.columns.resize(names.size());
    for (qsizetype i = 0; i < names.size(); ++i)
        analysis.columns[i].name = names[i];
    return analysis;
}
