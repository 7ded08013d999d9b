#pragma once

#include "Database/KNDatabaseResultSet.h"

#include <QByteArray>
#include <QIODevice>

#include <memory>

/// Renders result sets onto a device, row by row as they come. One writer serves all results of a run.
class ResultWriter
{
public:
    virtual ~ResultWriter();

    /// "table", "csv" or "json"; nothing for another name.
    static std::unique_ptr<ResultWriter> create(const QString &format, QIODevice &device);

    /// Once, before and behind all results.
    virtual void beginRun() {}
    virtual void endRun() {}
    /// A result that has columns.
    virtual void beginResult(const QStringList &columnNames) = 0;
    virtual void writeRow(const KNRow &row) = 0;
    virtual void endResult() = 0;

    /// Whether everything so far could be written (a full disk, a closed pipe).
    bool isGood() const { return m_good; }

protected:
    explicit ResultWriter(QIODevice &device)
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
