#pragma once

#include "Import/KNImportFormat.h"
#include "Import/KNImportHeaderReader.h"
#include "Import/KNImportRowQueue.h"

/// Reads separated values (RFC 4180): a value may be quoted, and then contain separators, line ends and
/// doubled quotes. An empty value is null, an empty one in quotes is empty text. Blanks belong to the values;
/// empty lines are skipped.
class KNCsvReader : public KNImportHeaderReader
{
    Q_DECLARE_TR_FUNCTIONS(KNCsvReader)

public:
    static std::unique_ptr<KNImportReader> open(const KNImportFile &file, KNError *error);
    static std::unique_ptr<KNImportReader> openTabs(const KNImportFile &file, KNError *error);

    ~KNCsvReader() override;
    bool readRow(KNImportRow *row, KNError *error) override;
    QString assumedEncoding() const override;
    double progress() const override { return m_lines.source.progress(); }

private:
    struct Parser;

    KNCsvReader();
    bool start(const KNImportFile &file, KNError *error);
    bool nextRow(KNImportRow *row, KNError *error) override;
    bool parse(QByteArrayView piece, KNError *error);
    bool finish(KNError *error);
    KNError parseError(quint64 line, qsizetype character) const;
    void addValue(const char *utf8, qsizetype size);
    void endRow();

    KNImportLines m_lines;
    const std::unique_ptr<Parser> m_parser;
    KNImportRowQueue m_rows;
    KNImportRow m_current;   ///< is being parsed
    bool m_isRowOver = true; ///< the next piece begins a row
    bool m_isEncodingAssumed = false;
    bool m_hasTooMany = false; ///< values in a row
};
