#pragma once

#include "Export/ResultWriter.h"

#include <QByteArray>
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
    /// Collects text in UTF-8 and hands it over in large pieces.
    void write(const QByteArray &utf8);
    void flush();

private:
    QIODevice &m_device;
    QByteArray m_pending;
    bool m_good = true;
};
