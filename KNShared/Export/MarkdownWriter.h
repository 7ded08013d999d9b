#pragma once

#include "Export/DeviceWriter.h"

/// Writes one Markdown table per result. Markdown's special characters are escaped, line ends become <br>,
/// and NULL is emphasised, which text never is.
class KNSHARED_EXPORT MarkdownWriter : public DeviceWriter
{
public:
    explicit MarkdownWriter(QIODevice &device)
        : DeviceWriter(device)
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    QStringList m_columnNames;
    bool m_isLaterResult = false;
    bool m_isFirstRow = true; ///< the first row decides which columns are right-aligned

    void writeHead(Cells firstRow);
};
