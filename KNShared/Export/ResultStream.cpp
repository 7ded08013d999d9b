#include "Export/ResultStream.h"

#include "Database/KNRowReader.h"

KNError ResultStream::write(const VantorDBC &details, const QString &sql, ResultWriter &writer,
                            const KNRowStream::IsCancelled &isCancelled)
{
    std::vector<KNRowCell> cells;
    bool hasColumns = false;
    KNRowStream::Reader reader;
    reader.columns = [&](const QStringList &names) {
        hasColumns = true;
        cells.resize(static_cast<std::size_t>(names.size()));
        writer.beginResult(names);
    };
    reader.rows = [&](const KNRowStore &rows, qsizetype first, qsizetype end) {
        KNRowReader cellReader(rows); // a new one, because discarding rows frees blocks of memory
        for (qsizetype row = first; row < end && writer.isGood(); ++row) {
            cellReader.seek(row);
            for (KNRowCell &cell : cells)
                cell = cellReader.next();
            writer.writeRow(cells);
        }
    };
    reader.isCancelled = [&] { return !writer.isGood() || (isCancelled && isCancelled()); };
    writer.beginRun();
    const KNError error = KNRowStream::read(details, sql, reader);
    if (hasColumns)
        writer.endResult();
    writer.endRun();
    return error;
}
