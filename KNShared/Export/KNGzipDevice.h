#pragma once

#include "KNSharedExport.h"

#include <QIODevice>

#include <memory>

struct z_stream_s;

/// Compresses what is written to it into another device, as a gzip file. Used by one thread at a time.
class KNSHARED_EXPORT KNGzipDevice : public QIODevice
{
public:
    /// `target` outlives this device, which is open for writing.
    explicit KNGzipDevice(QIODevice &target);
    ~KNGzipDevice() override;

    /// Writes what is left; call it once. False if any of the file could not be written.
    bool finish();
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool compress(const char *data, qint64 size, int flush);

    QIODevice &m_target;
    const std::unique_ptr<z_stream_s> m_stream;
    bool m_isGood = true;
};
