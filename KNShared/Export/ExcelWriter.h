#pragma once

#include "Export/ResultWriter.h"

#include <memory>

struct lxw_workbook;
struct lxw_worksheet;
struct lxw_format;

/// An Excel workbook with the rows of one result. What a cell cannot hold exactly is text as it is stored:
/// exact numbers of more than 15 digits, dates with an offset, before March 1900 or finer than a millisecond.
/// Rows beyond what a sheet holds go on in a further one. NULL is an empty cell.
class KNSHARED_EXPORT ExcelWriter : public ResultWriter
{
public:
    static constexpr qint64 RowsPerSheet = 1'048'576; ///< with the header
    static constexpr qsizetype LongestText = 32'767;  ///< UTF-16 units in a cell

    /// Writes to a file that is made or overwritten; needs about as much room again beside it meanwhile. The
    /// file is complete behind endRun().
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

    const QByteArray m_path;
    QByteArray m_folder; ///< for temporary files; the library keeps a pointer
    const qint64 m_rowsPerSheet;
    lxw_workbook *m_workbook = nullptr;
    lxw_worksheet *m_sheet = nullptr;
    lxw_format *m_headerFormat = nullptr;
    lxw_format *m_dateFormats[3][2] = {}; ///< by the parts of a date, without and with milliseconds
    QStringList m_columnNames;
    quint32 m_row = 0; ///< the next one in the sheet
    int m_sheets = 0;
    qint64 m_cutTexts = 0;
    qint64 m_numbersAsText = 0;
    qint64 m_roundedNumbers = 0;
    qint64 m_datesAsText = 0;
    bool m_good = true;
};
