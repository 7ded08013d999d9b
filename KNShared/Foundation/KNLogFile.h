#pragma once

#include <QByteArray>
#include <QString>

/// A rotating log file: "vantor.log" and the older vantor.1.log to vantor.4.log in the same folder, mode 0600
/// in a folder of mode 0700. Not thread-safe; the owner synchronises access.
class KNLogFile
{
public:
    KNLogFile(QString folder, qint64 maximumBytes);
    ~KNLogFile();
    KNLogFile(const KNLogFile &) = delete;
    KNLogFile &operator=(const KNLogFile &) = delete;

    /// Appends complete lines. Lines that cannot be written are dropped and not written to standard error,
    /// which is for the program's own output. Never blocks on a FIFO or a device at the file's path.
    void append(const QByteArray &lines);
    /// The path of the current file; empty if none could be opened.
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
