#include "Export/ResultExporter.h"

#include "Export/ResultFormat.h"
#include "Export/Utf16Device.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>

namespace {

KNError exportError(const QString &text)
{
    return KNError(QStringLiteral("com.quorvex.vantor.export"), 0, text);
}

/// A temporary file for the rows; deleted unless it has replaced the target.
class UnfinishedFile
{
public:
    explicit UnfinishedFile(const QFileInfo &target)
        : m_target(target.isSymLink() ? target.symLinkTarget() : target.absoluteFilePath())
        , m_file(KNFormat("%@/.%@.%x.part", QFileInfo(m_target).absolutePath(),
                          QFileInfo(m_target).fileName(), QRandomGenerator::global()->generate64()))
    {
    }
    ~UnfinishedFile()
    {
        m_file.close();
        QFile::remove(m_file.fileName());
    }
    bool open() { return m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered); }
    QFile &file() { return m_file; }
    /// Replaces the target; false on failure.
    bool commit()
    {
        m_file.close();
        if (const QFileInfo old(m_target); old.exists())
            m_file.setPermissions(old.permissions());
        return std::rename(QFile::encodeName(m_file.fileName()).constData(),
                           QFile::encodeName(m_target).constData()) == 0;
    }

private:
    const QString m_target;
    QFile m_file;
};

/// Returns null for an unknown extension.
const ResultFormat *formatFor(const QString &extension)
{
    const auto &formats = ResultFormat::all();
    const auto found = std::find_if(formats.begin(), formats.end(), [&](const ResultFormat &format) {
        return !extension.isEmpty() && format.extension == extension;
    });
    return found == formats.end() ? nullptr : &*found;
}

/// ".csv, .json or .xlsx"
QString extensions()
{
    QStringList texts;
    for (const ResultFormat &format : ResultFormat::offeredFor(ResultFormat::File))
        texts.append(QLatin1Char('.') + format.extension);
    const QString last = texts.takeLast();
    return KNFormat("%@ or %@", texts.join(QStringLiteral(", ")), last);
}

} // namespace

QStringList ResultExporter::fileFilters(const QString &preferredExtension)
{
    QStringList filters;
    for (const ResultFormat &format : ResultFormat::offeredFor(ResultFormat::File))
        filters.insert(
            format.extension == preferredExtension ? 0 : filters.size(),
            KNFormat("%@ (*.%@)", format.localizedTitle().remove(QLatin1Char('&')), format.extension));
    return filters;
}

ResultExporter::ResultExporter(ResultRows rows, QString path, CsvOptions csv)
    : m_rows(std::move(rows))
    , m_path(std::move(path))
    , m_csv(std::move(csv))
    , m_rowCount(m_rows.rowCount())
{
}

void ResultExporter::start(Finished finished)
{
    KNDispatch::globalQueue(
        [self = shared_from_this(), finished = std::move(finished)] { self->run(finished); });
}

void ResultExporter::run(const Finished &finished)
{
    KNError error;
    QStringList remarks;
    // The temporary file is deleted before the callback runs.
    const bool complete = writeFile(&error, &remarks);
    KNDispatch::mainQueue([finished, complete, error, remarks] { finished(complete, error, remarks); });
}

/// Returns false without an error if cancelled.
bool ResultExporter::writeFile(KNError *error, QStringList *remarks)
{
    UnfinishedFile unfinished{QFileInfo(m_path)};
    if (!unfinished.open()) {
        *error = exportError(
            KNFormat("The file %@ could not be written. %@", m_path, unfinished.file().errorString()));
        return false;
    }
    const ResultFormat *const format = formatFor(QFileInfo(m_path).suffix().toLower());
    if (!format) {
        *error = exportError(KNFormat("The file's name must end with %@.", extensions()));
        return false;
    }
    bool isGood = false;
    const bool isWritten = write(unfinished.file(), unfinished.file().fileName(), *format, &isGood, remarks);
    if (!isGood) {
        *error = exportError(KNFormat("The file %@ could not be written. Is the disk full?", m_path));
        return false;
    }
    if (!isWritten || m_cancelled)
        return false;
    if (!unfinished.commit())
        *error = exportError(KNFormat("The file %@ could not be replaced.", m_path));
    return !*error;
}

/// Writes the rows in the encoding of a CSV file or in UTF-8. Returns false if it was stopped or failed.
bool ResultExporter::write(QIODevice &device, const QString &path, const ResultFormat &format, bool *isGood,
                           QStringList *remarks)
{
    const bool isCsv = format.name == QLatin1String("csv");
    const bool isUtf16 = isCsv && m_csv.encoding == CsvOptions::Encoding::Utf16;
    const QByteArray mark = !isCsv || !m_csv.hasByteOrderMark ? QByteArray()
                            : isUtf16                         ? QByteArray("\xff\xfe")
                                                              : QByteArray("\xef\xbb\xbf");
    if (device.write(mark) != mark.size())
        return false;
    Utf16Device converted(device);
    QIODevice &target = isUtf16 ? static_cast<QIODevice &>(converted) : device;
    const auto writer = format.createWriter({.device = target, .path = path, .csv = m_csv});
    const bool isWritten = m_rows.writeTo(*writer, [this](qsizetype count) {
        m_rowsWritten = count;
        return !m_cancelled;
    });
    *remarks = writer->remarks();
    *isGood = writer->isGood();
    return isWritten;
}
