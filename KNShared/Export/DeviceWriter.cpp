#include "Export/DeviceWriter.h"

#include <QFileDevice>

void DeviceWriter::write(const QByteArray &utf8)
{
    constexpr qsizetype PieceSize = 64 * 1024;
    m_pending += utf8;
    if (m_pending.size() >= PieceSize)
        flush();
}

void DeviceWriter::flush()
{
    if (m_good && !m_pending.isEmpty())
        m_good = m_device.write(m_pending) == m_pending.size();
    m_pending.clear();
    // A file device buffers as well.
    if (auto *file = qobject_cast<QFileDevice *>(&m_device); file && m_good)
        m_good = file->flush();
}
