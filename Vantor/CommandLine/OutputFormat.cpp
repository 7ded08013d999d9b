#include "CommandLine/OutputFormat.h"

#include "CommandLine/TableWriter.h"
#include "Export/CsvWriter.h"
#include "Export/JsonWriter.h"

std::unique_ptr<ResultWriter> createResultWriter(const QString &format, QIODevice &device)
{
    if (format == QLatin1String("table"))
        return std::make_unique<TableWriter>(device);
    if (format == QLatin1String("csv"))
        return std::make_unique<CsvWriter>(device);
    if (format == QLatin1String("json"))
        return std::make_unique<JsonWriter>(device);
    return nullptr;
}
