#pragma once

#include "Database/KNByteBuffer.h"
#include "Export/ResultWriter.h"

#include <QIODevice>

/// A writer of text in UTF-8 onto a device, which must outlive it.
class KNSHARED_EXPORT DeviceWriter : public ResultWriter
{
public:
    bool isGood() const override { return m_good; }

protected:
    explicit DeviceWriter(QIODevice &device)
        : m_device(device)
    {
    }
    /// The bytes collected for the device. After a row, call flushLargePiece().
    KNByteBuffer &buffer() { return m_pending; }
    void write(QByteArrayView utf8);
    /// Writes to the device once there is enough to be worth a call.
    void flushLargePiece();
    void flush();

private:
    QIODevice &m_device;
    KNByteBuffer m_pending;
    bool m_good = true;
};
