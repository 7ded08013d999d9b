#include "CommandLine/ResultWriter.h"

#include "CommandLine/CsvWriter.h"
#include "CommandLine/JsonWriter.h"
#include "CommandLine/TableWriter.h"

#include <QFileDevice>

ResultWriter::~ResultWriter() = default;

std::unique_ptr<ResultWriter> ResultWriter::create(const QString &format, QIODevice &device)
{
    if (format == QLatin1String("table"))
        return std::make_unique<TableWriter>(device);
    if (format == QLatin1String("csv"))
        return std::make_unique<CsvWriter>(device);
    if (format == QLatin1String("json"))
        return std::make_unique<JsonWriter>(device);
    return nullptr;
}

void ResultWriter::write(const QByteArray &utf8)
{
    constexpr qsizetype PieceSize = 64 * 1024;
    m_pending += utf8;
    if (m_pending.size() >= PieceSize)
        flush();
}

void ResultWriter::flush()
{
    if (m_good && !m_pending.isEmpty())
        m_good = m_device.write(m_pending) == m_pending.size();
    m_pending.clear();
    // A file device buffers as well.
    if (auto *file = qobject_cast<QFileDevice *>(&m_device); file && m_good)
        m_good = file->flush();
}
