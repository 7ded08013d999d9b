#include "Export/ResultCopy.h"

#include "Export/CsvWriter.h"
#include "Export/InListWriter.h"
#include "Export/InsertWriter.h"
#include "Export/JsonObjectsWriter.h"
#include "Export/MarkdownWriter.h"
#include "Export/TabWriter.h"

#include <QBuffer>

namespace {

// Where rows come from in a query is not known.
const QString TableName = QStringLiteral("table_name");

/// Keeps the one value that it is given.
class SingleValue : public ResultWriter
{
public:
    void beginResult(const QStringList &) override {}
    void writeRow(Cells cells) override { value = cells.front().storedValue(); }
    void endResult() override {}
    bool isGood() const override { return true; }

    KNValue value;
};

std::unique_ptr<ResultWriter> writerFor(ResultCopy::Format format, QIODevice &device,
                                        const VantorDBCPtr &details, const QString &nullText)
{
    switch (format) {
    case ResultCopy::Format::Text:
        return std::make_unique<TabWriter>(device, nullText, false);
    case ResultCopy::Format::TextWithHeaders:
        return std::make_unique<TabWriter>(device, nullText, true);
    case ResultCopy::Format::Csv:
        return std::make_unique<CsvWriter>(device);
    case ResultCopy::Format::Json:
        return std::make_unique<JsonObjectsWriter>(device);
    case ResultCopy::Format::Insert:
        return std::make_unique<InsertWriter>(device, details, TableName);
    case ResultCopy::Format::InList:
        return std::make_unique<InListWriter>(device, details);
    case ResultCopy::Format::Markdown:
        return std::make_unique<MarkdownWriter>(device);
    }
    return nullptr;
}

} // namespace

ResultCopy ResultCopy::make(const ResultRows &rows, Format format, const VantorDBCPtr &details,
                            const QString &nullText, const std::atomic<bool> &cancelled, qint64 largestSize)
{
    ResultCopy copy;
    if (format == Format::Text && rows.rowCount() == 1 && rows.columns.size() == 1) {
        SingleValue single;
        rows.writeTo(single, [](qsizetype) { return true; });
        copy.text = single.value.isNull() ? nullText : single.value.displayText();
        return copy;
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    const auto writer = writerFor(format, buffer, details, nullText);
    qsizetype written = 0;
    rows.writeTo(*writer, [&](qsizetype count) {
        written = count;
        return !cancelled && buffer.size() < largestSize;
    });
    if (cancelled)
        return copy;
    copy.text = QString::fromUtf8(buffer.data());
    copy.rowsLeftOut = rows.rowCount() - written;
    copy.remarks = writer->remarks();
    return copy;
}
