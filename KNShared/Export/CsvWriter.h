#pragma once

#include "Export/CsvOptions.h"
#include "Export/DeviceWriter.h"

#include <array>

/// Comma-separated values according to RFC 4180, with LF line ends; by default with commas, a header line and
/// quotes where they are needed. NULL is an empty field, empty text is "". In a result of one column, where
/// an empty field would be an empty line, NULL is written as NULL and the text NULL is quoted. An empty line
/// separates results. Writes UTF-8 whatever the encoding of the options.
class KNSHARED_EXPORT CsvWriter : public DeviceWriter
{
public:
    explicit CsvWriter(QIODevice &device, const CsvOptions &options = {});

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override;

private:
    void writeField(const KNRowCell &cell, bool isOnly);
    void appendText(QByteArrayView text, const QByteArray &nullText);
    void appendQuoted(QByteArrayView text);
    bool needsQuotes(QByteArrayView text) const;

    const CsvOptions m_options;
    const QByteArray m_nullText;
    std::array<bool, 256> m_isSpecial = {}; ///< characters for which a text is quoted
    bool m_isFirst = true;
};
