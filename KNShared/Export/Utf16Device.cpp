#include "Export/Utf16Device.h"

/// A piece may end within a character: the decoder keeps its beginning.
qint64 Utf16Device::writeData(const char *utf8, qint64 size)
{
    const QString text = m_decoder(QByteArrayView(utf8, size));
    const QByteArray utf16 = m_encoder(text);
    return m_device.write(utf16) == utf16.size() ? size : -1;
}
