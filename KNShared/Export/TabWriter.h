#pragma once

#include "Export/DeviceWriter.h"

/// Tab-separated text for spreadsheets and editors. Values with tabs, line ends or quotes are quoted, as is
/// text that equals the replacement for NULL. The last line has no line end.
class KNSHARED_EXPORT TabWriter : public DeviceWriter
{
public:
    TabWriter(QIODevice &device, QString nullText, bool withHeader)
        : DeviceWriter(device)
        , m_nullText(std::move(nullText))
        , m_withHeader(withHeader)
    {
    }

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    QByteArray field(const QString &text) const;
    void writeLine(const QByteArrayList &fields);

    const QString m_nullText;
    const bool m_withHeader;
    bool m_isFirstLine = true;
};
