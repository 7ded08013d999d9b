#pragma once

#include "Export/DeviceWriter.h"

/// A table for people: columns as wide as their first rows need, numbers to the right, NULL written out, line
/// ends and tabs shown as signs, other control characters escaped. Wider values that come later push their
/// row out of line rather than being cut.
class TableWriter : public DeviceWriter
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
    struct Field
    {
        QString text;
        bool isNumber = false; ///< and stands to the right
    };
    using Line = QList<Field>;

    void writeHeld();
    void writeLine(const Line &line);

    QStringList m_columnNames;
    QList<int> m_widths;
    QList<Line> m_held; ///< the rows that the widths are taken from
    bool m_holding = true;
};
