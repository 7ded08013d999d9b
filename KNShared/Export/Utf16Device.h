#pragma once

#include "KNSharedExport.h"

#include <QIODevice>
#include <QStringConverter>

/// Writes UTF-8 text to another device as little-endian UTF-16. The device must outlive this one.
class KNSHARED_EXPORT Utf16Device : public QIODevice
{
public:
    explicit Utf16Device(QIODevice &device)
        : m_device(device)
    {
        open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *utf8, qint64 size) override;

private:
    QIODevice &m_device;
    QStringDecoder m_decoder =
        QStringDecoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
    QStringEncoder m_encoder = QStringEncoder(QStringConverter::Utf16LE);
};
