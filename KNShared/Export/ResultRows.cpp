#include "Export/ResultRows.h"

#include "Database/KNRowReader.h"

qsizetype ResultRows::rowCount() const
{
    qsizetype count = 0;
    for (const Range &range : ranges)
        count += range.count;
    return count;
}

bool ResultRows::writeTo(ResultWriter &writer, const GoOn &goOn) const
{
    constexpr std::size_t BytesBetweenQuestions = 64 * 1024;
    const QStringList names = result->columnNames();
    QStringList chosenNames;
    for (const qsizetype column : columns)
        chosenNames.append(names.value(column));

    writer.beginRun();
    writer.beginResult(chosenNames);
    KNRowReader reader(result->rows());
    std::vector<KNRowCell> row;
    qsizetype written = 0;
    std::size_t bytes = 0; // since the last progress call
    bool goesOn = true;
    const auto writeRow = [&](qsizetype shown) {
        const qsizetype stored = order ? qsizetype{order->at(static_cast<std::size_t>(shown))} : shown;
        row.clear();
        reader.seek(stored);
        qsizetype next = 0;
        for (const qsizetype column : columns) {
            KNRowCell cell;
            for (; next <= column; ++next)
                cell = reader.next();
            row.push_back(cell);
            bytes += 8 + cell.length;
        }
        writer.writeRow(row);
        ++written;
        if (bytes >= BytesBetweenQuestions) {
            bytes = 0;
            goesOn = writer.isGood() && goOn(written);
        }
    };
    for (const Range &range : ranges) {
        for (qsizetype shown = range.first; goesOn && shown < range.first + range.count; ++shown)
            writeRow(shown);
    }
    writer.endResult();
    writer.endRun();
    return goesOn && writer.isGood() && goOn(written);
}
