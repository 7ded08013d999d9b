#pragma once

#include "Database/KNByteBuffer.h"
#include "Export/ResultWriter.h"

#include <QIODevice>

/// Writes UTF-8 text to a device, which must outlive the writer.
class KNSHARED_EXPORT DeviceWriter : public ResultWriter
{
public:
    bool isGood() const override { return m_good; }

protected:
    explicit DeviceWriter(QIODevice &device)
        : m_device(device)
    {
    }
    /// The buffered output. Call flushLargePiece() after each row.
    KNByteBuffer &buffer() { return m_pending; }
    void write(QByteArrayView utf8);
    /// Writes the buffer to the device once it is large enough.
    void flushLargePiece();
    void flush();

private:
    QIODevice &m_device;
    KNByteBuffer m_pending;
    bool m_good = true;
};
