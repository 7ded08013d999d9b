#include "Export/DeviceWriter.h"

#include <QFileDevice>

void DeviceWriter::write(QByteArrayView utf8)
{
    m_pending.append(utf8);
    flushLargePiece();
}

void DeviceWriter::flushLargePiece()
{
    constexpr std::size_t PieceSize = 64 * 1024;
    if (m_pending.size() >= PieceSize)
        flush();
}

void DeviceWriter::flush()
{
    const auto size = static_cast<qint64>(m_pending.size());
    if (m_good && size > 0)
        m_good = m_device.write(m_pending.data(), size) == size;
    m_pending.clear();
    // A file device has its own buffer.
    if (auto *file = qobject_cast<QFileDevice *>(&m_device); file && m_good)
        m_good = file->flush();
}
