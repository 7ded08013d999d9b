#pragma once

#include "Export/DeviceWriter.h"

/// Writes a readable table: column widths fit the first rows, numbers are right-aligned, NULL is written out,
/// line ends and tabs are shown as symbols, other control characters are escaped. Later values that are too
/// wide shift the rest of their row instead of being truncated.
class KNSHARED_EXPORT TableWriter : public DeviceWriter
{
public:
    explicit TableWriter(QIODevice &device)
        : DeviceWriter(device)
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    /// A field of a line; numbers are right-aligned.
    struct Field
    {
        QByteArrayView text; ///< escaped, in UTF-8
        qsizetype width = 0; ///< columns on a terminal
        bool isNumber = false;
    };
    struct HeldField
    {
        QByteArray text;
        qsizetype width = 0;
        bool isNumber = false;
    };

    Field fieldOf(const KNRowCell &cell);
    static QByteArrayView textOf(const KNByteBuffer &buffer);
    void writeHeld();
    void writeField(qsizetype column, const Field &field);
    void appendTimes(char byte, qsizetype times);
    void endLine();

    QByteArrayList m_columnNames;
    QList<qsizetype> m_widths;
    QList<QList<HeldField>> m_held; ///< the rows that determine the column widths
    bool m_holding = true;
    KNByteBuffer m_text; ///< of the current cell
};
