#pragma once

#include "Export/ResultWriter.h"

#include <memory>
#include <vector>

struct lxw_workbook;
struct lxw_worksheet;
struct lxw_format;

/// Writes the rows of one result as an Excel workbook. Values that a cell cannot hold exactly are written as
/// their stored text: exact numbers of more than 15 digits, and dates with an offset, before March 1900 or
/// finer than a millisecond. Rows beyond the limit of a sheet continue on another sheet. NULL is an empty
/// cell. Columns are as wide as their names and first values; the row of names does not scroll.
class KNSHARED_EXPORT ExcelWriter : public ResultWriter
{
public:
    static constexpr qint64 RowsPerSheet = 1'048'576; ///< including the header
    static constexpr qsizetype LongestText = 32'767;  ///< UTF-16 units per cell

    /// Creates or overwrites the file at `path`; meanwhile needs about the same disk space again in the same
    /// folder. The file is complete after endRun().
    explicit ExcelWriter(const QString &path, qint64 rowsPerSheet = RowsPerSheet);
    ~ExcelWriter() override;

    void beginResult(const QStringList &columnNames) override;
    void writeRow(Cells cells) override;
    void endResult() override {}
    void endRun() override;
    bool isGood() const override { return m_good; }
    QStringList remarks() const override;

private:
    void beginSheet();
    void writeCell(quint16 column, const KNValue &value);
    void writeText(quint16 column, const QString &text, lxw_format *format = nullptr);
    bool writeDate(quint16 column, const KNDateTime &date);
    bool writeNumber(quint16 column, const KNValue &value);
    void check(int status);
    void widen(quint16 column, qsizetype characters);
    void setWidths();

    const QByteArray m_path;
    QByteArray m_folder; ///< for temporary files; the library keeps a pointer to it
    const qint64 m_rowsPerSheet;
    lxw_workbook *m_workbook = nullptr;
    lxw_worksheet *m_sheet = nullptr;
    lxw_format *m_headerFormat = nullptr;
    lxw_format *m_dateFormats[3][2] = {}; ///< by the parts of a date, without and with milliseconds
    QStringList m_columnNames;
    std::vector<int> m_widths; ///< in characters, from the first rows of the sheet
    quint32 m_row = 0;         ///< the next row of the sheet
    int m_sheets = 0;
    qint64 m_cutTexts = 0;
    qint64 m_numbersAsText = 0;
    qint64 m_roundedNumbers = 0;
    qint64 m_datesAsText = 0;
    bool m_good = true;
};
