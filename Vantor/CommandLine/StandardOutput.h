#pragma once

#include <QIODevice>

/// Standard output as a device whose writes can be aborted: a write that waits for the reader of a pipe or
/// for a terminal ends when abandon() is called. On a terminal, control characters are escaped. One in a
/// program; one thread writes.
class StandardOutput : public QIODevice
{
public:
    StandardOutput();
    ~StandardOutput() override;

    /// Makes writes fail instead of waiting. Any thread.
    void abandon();

    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    bool writeAll(const char *data, qint64 size);
    bool waitUntilWritable() const;

    const int m_abandoned; ///< an eventfd
    const bool m_isTerminal;
    bool m_mayBlock = true;
    bool m_hasFailed = false; ///< every later write fails, too: output with a gap would pass for complete
};
