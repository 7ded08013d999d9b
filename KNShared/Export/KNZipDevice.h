#pragma once

#include "KNSharedExport.h"

#include <QIODevice>

/// Writes a zip file into another device: what is written to it goes into the part that beginPart() began.
/// Used by one thread at a time.
class KNSHARED_EXPORT KNZipDevice : public QIODevice
{
public:
    /// `target` can seek and outlives this device, which is open for writing.
    explicit KNZipDevice(QIODevice &target);
    ~KNZipDevice() override;

    /// False if it could not be written, as with the following functions.
    bool beginPart(const QString &name);
    /// Writes what is left; call it once.
    bool finish();
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool endPart();

    void *m_zip; ///< null if it could not be created
    bool m_isGood;
    bool m_isInPart = false;
};
