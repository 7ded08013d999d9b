#include "Import/KNImportFormat.h"

#include "Import/KNCsvReader.h"
#include "Import/KNExcelReader.h"
#include "Import/KNJsonReader.h"

#include <QFileInfo>

#include <algorithm>

const QList<KNImportFormat> &KNImportFormat::all()
{
    static const QList<KNImportFormat> formats = {
        {"csv", QT_TRANSLATE_NOOP("KNImportFormat", "Separated values (CSV)"), "csv",
         HasSeparator | HasEncoding | HasHeader, KNCsvReader::open},
        {"tsv", QT_TRANSLATE_NOOP("KNImportFormat", "Tab-separated values (TSV)"), "tsv",
         HasEncoding | HasHeader, KNCsvReader::openTabs},
        {"json", QT_TRANSLATE_NOOP("KNImportFormat", "JSON"), "json", HasEncoding, KNJsonReader::open},
        {"jsonl", QT_TRANSLATE_NOOP("KNImportFormat", "JSON Lines"), "jsonl", HasEncoding,
         KNJsonReader::open},
        {"xlsx", QT_TRANSLATE_NOOP("KNImportFormat", "Excel workbook"), "xlsx", HasHeader | HasSheets,
         KNExcelReader::open},
    };
    return formats;
}

QString KNImportFormat::localizedTitle() const
{
    return QCoreApplication::translate("KNImportFormat", title);
}

QStringList KNImportFormat::names()
{
    QStringList names;
    for (const KNImportFormat &format : all())
        names.append(QString::fromLatin1(format.name));
    return names;
}

const KNImportFormat *KNImportFormat::named(const QString &name)
{
    const auto found = std::find_if(all().begin(), all().end(), [&](const KNImportFormat &format) {
        return name == QLatin1String(format.name);
    });
    return found == all().end() ? nullptr : &*found;
}

const KNImportFormat *KNImportFormat::of(const KNImportFile &file)
{
    if (!file.format.isNull())
        return named(file.format);
    const QString extension = QFileInfo(file.path).suffix().toLower();
    if (extension == QLatin1String("txt"))
        return named(QStringLiteral("csv"));
    if (extension == QLatin1String("ndjson"))
        return named(QStringLiteral("jsonl"));
    const auto found = std::find_if(all().begin(), all().end(), [&](const KNImportFormat &format) {
        return extension == QLatin1String(format.extension);
    });
    return found == all().end() ? nullptr : &*found;
}

std::unique_ptr<KNImportReader> KNImportFormat::open(const KNImportFile &file, KNError *error)
{
    const KNImportFormat *const format = of(file);
    if (format)
        return format->create(file, error);
    *error = KNError(
        QStringLiteral("com.quorvex.vantor.import"), 0,
        QCoreApplication::translate("KNImportFormat", "The format of \"%1\" is not known. Choose one of %2.")
            .arg(QFileInfo(file.path).fileName(), names().join(QStringLiteral(", "))));
    return nullptr;
}
