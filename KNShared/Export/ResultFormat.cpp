#include "Export/ResultFormat.h"

#include "Export/CsvWriter.h"
#include "Export/ExcelWriter.h"
#include "Export/InListWriter.h"
#include "Export/InsertWriter.h"
#include "Export/JsonObjectsWriter.h"
#include "Export/JsonWriter.h"
#include "Export/MarkdownWriter.h"
#include "Export/TabWriter.h"
#include "Export/TableWriter.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

// The source table of a result is not known.
const QString TableName = QStringLiteral("table_name");

using Target = ResultFormat::Target;

/// A factory for writers that need only the device.
template <typename Writer>
ResultFormat::CreateWriter onDevice()
{
    return [](const Target &target) { return std::make_unique<Writer>(target.device); };
}

ResultFormat::CreateWriter tabbed(bool withHeader)
{
    return [withHeader](const Target &target) {
        return std::make_unique<TabWriter>(target.device, target.nullText, withHeader);
    };
}

std::unique_ptr<ResultWriter> createCsvWriter(const Target &target)
{
    return std::make_unique<CsvWriter>(target.device, target.csv);
}

std::unique_ptr<ResultWriter> createJsonWriter(const Target &target)
{
    if (target.hasManyResults)
        return std::make_unique<JsonWriter>(target.device);
    return std::make_unique<JsonObjectsWriter>(target.device);
}

std::unique_ptr<ResultWriter> createInsertWriter(const Target &target)
{
    return std::make_unique<InsertWriter>(target.device, target.details, TableName);
}

std::unique_ptr<ResultWriter> createInListWriter(const Target &target)
{
    return std::make_unique<InListWriter>(target.device, target.details);
}

std::unique_ptr<ResultWriter> createExcelWriter(const Target &target)
{
    return std::make_unique<ExcelWriter>(target.path);
}

} // namespace

const QList<ResultFormat> &ResultFormat::all()
{
    static const QList<ResultFormat> formats = {
        {QStringLiteral("text"), QT_TRANSLATE_NOOP("ResultFormat", "&Copy"), {}, 0, tabbed(false)},
        {QStringLiteral("text-with-headers"),
         QT_TRANSLATE_NOOP("ResultFormat", "Copy with &Headers"),
         {},
         0,
         tabbed(true)},
        {QStringLiteral("table"),
         QT_TRANSLATE_NOOP("ResultFormat", "&Table"),
         {},
         Terminal,
         onDevice<TableWriter>()},
        {QStringLiteral("csv"), QT_TRANSLATE_NOOP("ResultFormat", "&CSV"), QStringLiteral("csv"),
         CopyAs | File | Terminal, createCsvWriter},
        {QStringLiteral("json"), QT_TRANSLATE_NOOP("ResultFormat", "&JSON"), QStringLiteral("json"),
         CopyAs | File | Terminal, createJsonWriter},
        {QStringLiteral("insert"),
         QT_TRANSLATE_NOOP("ResultFormat", "&INSERT Statements"),
         {},
         CopyAs,
         createInsertWriter},
        {QStringLiteral("in-list"),
         QT_TRANSLATE_NOOP("ResultFormat", "I&N List"),
         {},
         CopyAs,
         createInListWriter},
        {QStringLiteral("markdown"),
         QT_TRANSLATE_NOOP("ResultFormat", "&Markdown"),
         {},
         CopyAs | Terminal,
         onDevice<MarkdownWriter>()},
        {QStringLiteral("xlsx"), QT_TRANSLATE_NOOP("ResultFormat", "&Excel"), QStringLiteral("xlsx"), File,
         createExcelWriter},
    };
    return formats;
}

QString ResultFormat::localizedTitle() const
{
    return QCoreApplication::translate("ResultFormat", title);
}

QList<ResultFormat> ResultFormat::offeredFor(Use use)
{
    QList<ResultFormat> offered;
    std::copy_if(all().begin(), all().end(), std::back_inserter(offered),
                 [use](const ResultFormat &format) { return (format.uses & use) != 0; });
    return offered;
}

QStringList ResultFormat::namesFor(Use use)
{
    QStringList names;
    for (const ResultFormat &format : offeredFor(use))
        names.append(format.name);
    return names;
}

const ResultFormat *ResultFormat::named(const QString &name)
{
    const auto found = std::find_if(all().begin(), all().end(),
                                    [&](const ResultFormat &format) { return format.name == name; });
    return found == all().end() ? nullptr : &*found;
}
