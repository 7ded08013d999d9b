#pragma once

#include <QByteArray>
#include <QString>

/// A rotating file of log lines: "vantor.log" and the older vantor.1.log to vantor.4.log beside it, mode 0600
/// in a folder of mode 0700. Not thread-safe: its owner guards it.
class KNLogFile
{
public:
    KNLogFile(QString folder, qint64 maximumBytes);
    ~KNLogFile();
    KNLogFile(const KNLogFile &) = delete;
    KNLogFile &operator=(const KNLogFile &) = delete;

    /// Appends whole lines. Lines that cannot be written are dropped; standard error stays free for the
    /// program's own output. Never blocks on a FIFO or a device in place of the file.
    void append(const QByteArray &lines);
    /// The file being written; empty when none could be opened.
    QString path() const;

private:
    QString pathOfGeneration(int generation) const;
    bool open();
    void close();
    void rotate();

    const QString m_folder;
    const qint64 m_maximumBytes;
    int m_descriptor = -1;
};
