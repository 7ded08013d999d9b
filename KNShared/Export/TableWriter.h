#pragma once

#include "Export/DeviceWriter.h"

/// A table for people: columns as wide as their first rows need, numbers to the right, NULL written out, line
/// ends and tabs shown as signs, other control characters escaped. Wider values that come later push their
/// row out of line rather than being cut.
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
    /// A field of a line; numbers stand to the right.
    struct Field
    {
        QByteArrayView text; ///< escaped, in UTF-8
        qsizetype width = 0; ///< places on a terminal
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
    QList<QList<HeldField>> m_held; ///< the rows that the widths are taken from
    bool m_holding = true;
    KNByteBuffer m_text; ///< of the cell that is written
};
