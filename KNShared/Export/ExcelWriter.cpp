#include "Export/ExcelWriter.h"

#include "Foundation/KNFormat.h"

#include <QFileInfo>
#include <QStorageInfo>

#include <xlsxwriter.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr qint64 TicksOfMillisecond = KNDateTime::TicksPerSecond / 1000;
constexpr qint64 TicksOfDay = KNDateTime::TicksPerSecond * 24 * 60 * 60;
constexpr double SerialOf1900 = 2;    // the format's number for 1900-01-01, without its non-existent leap day
constexpr qint64 FirstDay = 59;       // 1900-03-01, the first day that the format numbers correctly
constexpr qsizetype ExactDigits = 15; // decimal digits that the double of a cell keeps exactly
constexpr int WrittenDigits = 16;     // digits of a double that the library writes
constexpr quint32 RowsForWidth = 1000; // that determine the width of columns
constexpr int NarrowestColumn = 8;     // in characters
constexpr int WidestSheetColumn = 60;
constexpr qsizetype DateWidths[] = {10, 12, 23}; // by the parts of a date

/// Counts the digits of a number in plain notation, without leading and trailing zeros.
qsizetype significantDigits(const QString &number)
{
    QString digits;
    for (const QChar c : number) {
        if (c.isDigit() && (c != QLatin1Char('0') || !digits.isEmpty()))
            digits += c;
    }
    while (digits.endsWith(QLatin1Char('0')))
        digits.chop(1);
    return digits.size();
}

QString remark(qint64 count, const char *one, const char *many)
{
    return count == 1 ? QString::fromUtf8(one) : KNFormat(many, count);
}

} // namespace

ExcelWriter::ExcelWriter(const QString &path, qint64 rowsPerSheet)
    : m_path(path.toUtf8())
    , m_folder(QFileInfo(path).absolutePath().toUtf8())
    , m_rowsPerSheet(rowsPerSheet)
{
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = m_folder.data();
    m_workbook = workbook_new_opt(m_path.constData(), &options);
    m_good = m_workbook != nullptr;
    if (!m_good)
        return;
    m_headerFormat = workbook_add_format(m_workbook);
    format_set_bold(m_headerFormat);
    static constexpr const char *formats[3][2] = {
        {"yyyy-mm-dd", "yyyy-mm-dd"},
        {"hh:mm:ss", "hh:mm:ss.000"},
        {"yyyy-mm-dd hh:mm:ss", "yyyy-mm-dd hh:mm:ss.000"},
    };
    for (int parts = 0; parts < 3; ++parts) {
        for (int fine = 0; fine < 2; ++fine) {
            m_dateFormats[parts][fine] = workbook_add_format(m_workbook);
            format_set_num_format(m_dateFormats[parts][fine], formats[parts][fine]);
        }
    }
}

ExcelWriter::~ExcelWriter()
{
    if (m_workbook)
        lxw_workbook_free(m_workbook);
}

void ExcelWriter::beginResult(const QStringList &columnNames)
{
    m_columnNames = columnNames;
    beginSheet();
}

void ExcelWriter::writeRow(Cells cells)
{
    if (!m_good)
        return;
    if (m_row >= m_rowsPerSheet)
        beginSheet();
    quint16 column = 0;
    for (const KNRowCell &cell : cells)
        writeCell(column++, cell.storedValue());
    ++m_row;
}

void ExcelWriter::endRun()
{
    if (!m_workbook)
        return;
    setWidths();
    // The library packs its temporary files without checking that they were written.
    qint64 needed = 0;
    for (lxw_worksheet *sheet = m_workbook->worksheets ? m_workbook->worksheets->stqh_first : nullptr; sheet;
         sheet = sheet->list_pointers.stqe_next) {
        std::FILE *const rows = sheet->optimize_tmpfile;
        if (rows && (std::fflush(rows) != 0 || std::ferror(rows)))
            m_good = false;
        needed += rows ? std::ftell(rows) : 0;
    }
    const QStorageInfo disk(QString::fromUtf8(m_folder));
    if (disk.isValid() && disk.bytesAvailable() < needed + needed / 4)
        m_good = false;
    if (m_good)
        check(workbook_close(std::exchange(m_workbook, nullptr)));
}

QStringList ExcelWriter::remarks() const
{
    QStringList remarks;
    if (m_sheets > 1)
        remarks.append(
            KNFormat("The rows are on %d sheets: one holds no more than %lld.", m_sheets, m_rowsPerSheet));
    if (m_cutTexts > 0)
        remarks.append(remark(m_cutTexts, "One value was cut: a cell holds no more than 32767 characters.",
                              "%lld values were cut: a cell holds no more than 32767 characters."));
    if (m_numbersAsText > 0)
        remarks.append(remark(m_numbersAsText,
                              "One number is text: it has more digits than a cell's number keeps.",
                              "%lld numbers are text: they have more digits than a cell's number keeps."));
    if (m_roundedNumbers > 0)
        remarks.append(remark(m_roundedNumbers, "One floating number was rounded to 16 digits.",
                              "%lld floating numbers were rounded to 16 digits."));
    if (m_datesAsText > 0)
        remarks.append(remark(
            m_datesAsText,
            "One date is text: a cell's date has no offset, no parts of a millisecond and begins in March "
            "1900.",
            "%lld dates are text: a cell's date has no offset, no parts of a millisecond and begins in "
            "March 1900."));
    return remarks;
}

void ExcelWriter::beginSheet()
{
    if (!m_good)
        return;
    setWidths();
    ++m_sheets;
    m_sheet = workbook_add_worksheet(m_workbook, nullptr);
    m_good = m_sheet != nullptr;
    if (!m_good)
        return;
    worksheet_freeze_panes(m_sheet, 1, 0);
    m_row = 0;
    m_widths.assign(static_cast<std::size_t>(m_columnNames.size()), NarrowestColumn);
    quint16 column = 0;
    for (const QString &name : std::as_const(m_columnNames))
        writeText(column++, name, m_headerFormat);
    m_row = 1;
}

void ExcelWriter::writeCell(quint16 column, const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Null:
        return;
    case KNValue::Kind::Bool:
        return check(worksheet_write_boolean(m_sheet, m_row, column, value.toBool(), nullptr));
    case KNValue::Kind::Int32:
    case KNValue::Kind::Int64:
    case KNValue::Kind::Float:
    case KNValue::Kind::Double:
    case KNValue::Kind::Decimal:
        if (writeNumber(column, value))
            return;
        ++m_numbersAsText;
        break;
    case KNValue::Kind::Date:
        if (writeDate(column, value.dateTime()))
            return;
        ++m_datesAsText;
        break;
    case KNValue::Kind::Text:
    case KNValue::Kind::Bytes:
        break;
    }
    writeText(column, value.displayText());
}

void ExcelWriter::writeText(quint16 column, const QString &text, lxw_format *format)
{
    QString fitting = text;
    if (text.size() > LongestText) {
        fitting.truncate(text.at(LongestText - 1).isHighSurrogate() ? LongestText - 1 : LongestText);
        ++m_cutTexts;
    }
    fitting.replace(QChar(0), QChar(QChar::ReplacementCharacter));
    const qsizetype lineEnd = fitting.indexOf(QLatin1Char('\n'));
    widen(column, lineEnd < 0 ? fitting.size() : lineEnd);
    check(worksheet_write_string(m_sheet, m_row, column, fitting.toUtf8().constData(), format));
}

/// Returns false and writes nothing if a cell cannot hold the date exactly.
bool ExcelWriter::writeDate(quint16 column, const KNDateTime &date)
{
    const bool isTime = date.parts == KNDateTime::Parts::Time;
    // A cell's date has no offset, and its time of day must be before 24:00.
    if (date.offsetMinutes != KNDateTime::NoOffset || (isTime && date.ticks >= TicksOfDay))
        return false;
    if (date.ticks % TicksOfMillisecond != 0 || date.ticks < (isTime ? 0 : FirstDay * TicksOfDay))
        return false;
    double serial = static_cast<double>(date.ticks) / static_cast<double>(TicksOfDay);
    if (!isTime)
        serial += SerialOf1900;
    widen(column, DateWidths[static_cast<int>(date.parts)]);
    lxw_format *const format = m_dateFormats[static_cast<int>(date.parts)][date.fractionDigits > 0];
    check(worksheet_write_number(m_sheet, m_row, column, serial, format));
    return true;
}

/// Returns false and writes nothing if a cell would lose digits of the number.
bool ExcelWriter::writeNumber(quint16 column, const KNValue &value)
{
    const QString text = value.displayText();
    const double number = text.toDouble();
    if (!qIsFinite(number))
        return false;
    const bool isFloating = value.kind() == KNValue::Kind::Float || value.kind() == KNValue::Kind::Double;
    if (!isFloating && significantDigits(text) > ExactDigits)
        return false;
    if (isFloating && QString::number(number, 'g', WrittenDigits).toDouble() != number)
        ++m_roundedNumbers;
    widen(column, text.size());
    check(worksheet_write_number(m_sheet, m_row, column, number, nullptr));
    return true;
}

void ExcelWriter::widen(quint16 column, qsizetype characters)
{
    if (m_row > RowsForWidth)
        return;
    if (column >= m_widths.size())
        m_widths.resize(column + std::size_t{1}, NarrowestColumn);
    // One character more for the margins of a cell.
    int &width = m_widths[column];
    width = std::max(width, static_cast<int>(std::min<qsizetype>(characters + 1, WidestSheetColumn)));
}

/// Sets the widths of the sheet that ends.
void ExcelWriter::setWidths()
{
    if (!m_sheet)
        return;
    for (std::size_t column = 0; column < m_widths.size(); ++column) {
        const auto place = static_cast<quint16>(column);
        check(worksheet_set_column(m_sheet, place, place, m_widths[column], nullptr));
    }
}

void ExcelWriter::check(int status)
{
    if (status != LXW_NO_ERROR)
        m_good = false;
}
