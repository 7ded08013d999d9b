#include "Export/ResultCopy.h"

#include "Foundation/KNUtf8.h"

#include <QBuffer>

namespace {

/// Stores the single value written to it.
class SingleValue : public ResultWriter
{
public:
    void beginResult(const QStringList &) override {}
    void writeRow(Cells cells) override { value = cells.front().storedValue(); }
    void endResult() override {}
    bool isGood() const override { return true; }

    KNValue value;
};

} // namespace

ResultCopy ResultCopy::make(const ResultRows &rows, const ResultFormat &format, const VantorDBCPtr &details,
                            const QString &nullText, const std::atomic<bool> &cancelled, qint64 largestSize)
{
    ResultCopy copy;
    if (format.name == QLatin1String("text") && rows.rowCount() == 1 && rows.columns.size() == 1) {
        SingleValue single;
        rows.writeTo(single, [](qsizetype) { return true; });
        copy.text = single.value.isNull() ? nullText : single.value.displayText();
        return copy;
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const auto writer = format.createWriter({.device = buffer, .details = details, .nullText = nullText});
    qsizetype written = 0;
    rows.writeTo(*writer, [&](qsizetype count) {
        written = count;
        return !cancelled && buffer.size() < largestSize;
    });
    if (cancelled)
        return copy;
    copy.text = KNTextFromUtf8(buffer.data());
    copy.rowsLeftOut = rows.rowCount() - written;
    copy.remarks = writer->remarks();
    return copy;
}
