#pragma once

#include "Export/DeviceWriter.h"

/// Tables in Markdown, one for each result. Signs that mean something there are escaped, line ends become
/// <br>, and NULL is emphasised, which no text is.
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
    bool m_isFirstRow = true; ///< which decides what columns are aligned to the right

    void writeHead(Cells firstRow);
};
