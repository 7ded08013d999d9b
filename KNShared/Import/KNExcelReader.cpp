#include "Import/KNExcelReader.h"

#include "Foundation/KNFloatText.h"

namespace {

constexpr qint64 LargestDescription = 32 * 1024 * 1024; // of workbook, relations and styles
constexpr qint64 LargestStrings = qint64(2) * 1024 * 1024 * 1024;
constexpr qint64 LargestSheet = qint64(16) * 1024 * 1024 * 1024;
constexpr qsizetype MostSheets = 10'000;
constexpr auto Relationships = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr auto StrictRelationships = "http://purl.oclc.org/ooxml/officeDocument/relationships";

/// The column of a cell such as "AB12", from 0; -1 if it names none.
qsizetype columnOf(QStringView reference)
{
    qsizetype column = 0;
    for (const QChar c : reference) {
        if (c < QLatin1Char('A') || c > QLatin1Char('Z'))
            break;
        column = column * 26 + (c.unicode() - 'A' + 1);
        if (column > KNImportReader::MostColumns)
            return -1;
    }
    return column - 1;
}

/// Excel writes numbers with 17 digits: 0.1 is 0.10000000000000001.
QString shortestNumber(const QString &text)
{
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? KNFloatText(number) : text;
}

} // namespace

KNError KNExcelReader::damaged() const
{
    return fileError(tr("The workbook \"%1\" is damaged, encrypted or too large.").arg(m_path));
}

std::unique_ptr<KNImportReader> KNExcelReader::open(const KNImportFile &file, KNError *error)
{
    auto reader = std::make_unique<KNExcelReader>();
    if (!reader->openWorkbook(file.path, error) || !reader->readShared(error) ||
        !reader->openSheet(file.sheet, error) ||
        !reader->readHeader(file.hasHeader, tr("The sheet is empty."), error))
        return nullptr;
    return reader;
}

QStringList KNExcelReader::sheets(const QString &path, KNError *error)
{
    KNExcelReader reader;
    QStringList names;
    if (reader.openWorkbook(path, error)) {
        for (const Sheet &sheet : std::as_const(reader.m_sheets))
            names.append(sheet.name);
    }
    return names;
}

bool KNExcelReader::openWorkbook(const QString &path, KNError *error)
{
    m_path = path;
    m_zip = KNZipFile::open(path, error);
    if (!m_zip)
        return false;
    const auto workbook = m_zip->part(QStringLiteral("xl/workbook.xml"), LargestDescription);
    if (workbook)
        readWorkbook(workbook.get());
    if (m_sheets.isEmpty())
        *error = damaged();
    return !m_sheets.isEmpty();
}

void KNExcelReader::readWorkbook(QIODevice *device)
{
    QXmlStreamReader xml(device);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const auto attributes = xml.attributes();
        if (xml.name() == QLatin1String("workbookPr")) {
            const auto flag = attributes.value(QLatin1String("date1904"));
            m_isSince1904 = flag == QLatin1String("1") || flag == QLatin1String("true");
        }
        if (xml.name() != QLatin1String("sheet") || m_sheets.size() >= MostSheets)
            continue;
        QString relation = attributes.value(QLatin1String(Relationships), QLatin1String("id")).toString();
        if (relation.isEmpty())
            relation = attributes.value(QLatin1String(StrictRelationships), QLatin1String("id")).toString();
        m_sheets.append({attributes.value(QLatin1String("name")).toString(), relation});
    }
}

bool KNExcelReader::readShared(KNError *error)
{
    if (const auto styles = m_zip->part(QStringLiteral("xl/styles.xml"), LargestDescription))
        m_styles.read(styles.get());
    const auto strings = m_zip->part(QStringLiteral("xl/sharedStrings.xml"), LargestStrings);
    if (!strings || m_strings.read(strings.get()))
        return true;
    *error = damaged();
    return false;
}

/// The name of the part that holds the sheet.
QString KNExcelReader::partOf(const Sheet &sheet) const
{
    const auto relations = m_zip->part(QStringLiteral("xl/_rels/workbook.xml.rels"), LargestDescription);
    QXmlStreamReader xml(relations.get());
    while (relations && !xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement ||
            xml.attributes().value(QLatin1String("Id")) != sheet.relation)
            continue;
        const QString target = xml.attributes().value(QLatin1String("Target")).toString();
        return target.startsWith(QLatin1Char('/')) ? target.mid(1) : QLatin1String("xl/") + target;
    }
    return {};
}

bool KNExcelReader::openSheet(const QString &name, KNError *error)
{
    const auto found = name.isNull()
                           ? m_sheets.cbegin()
                           : std::find_if(m_sheets.cbegin(), m_sheets.cend(), [&](const Sheet &sheet) {
                                 return sheet.name.compare(name, Qt::CaseInsensitive) == 0;
                             });
    if (found == m_sheets.cend()) {
        *error = fileError(tr("The workbook has no sheet \"%1\".").arg(name));
        return false;
    }
    m_part = m_zip->part(partOf(*found), LargestSheet);
    if (!m_part) {
        *error = damaged();
        return false;
    }
    m_xml.setDevice(m_part.get());
    return true;
}

double KNExcelReader::progress() const
{
    return m_part && m_part->unpackedSize() > 0
               ? qBound(0.0, double(m_part->bytesRead()) / double(m_part->unpackedSize()), 1.0)
               : 1;
}

bool KNExcelReader::readRow(KNImportRow *row, KNError *error)
{
    error->clear();
    if (!takeRow(row, error))
        return false;
    while (row->values.size() > columns().size() && row->values.last().isNull())
        row->values.removeLast();
    if (row->values.size() > columns().size() && row->problem.isNull())
        row->problem = tr("The row has %1 values, but there are %2 columns.")
                           .arg(row->values.size())
                           .arg(columns().size());
    while (row->values.size() < columns().size())
        row->values.append(QString());
    return true;
}

/// Reads up to the next row that has a value.
bool KNExcelReader::nextRow(KNImportRow *row, KNError *error)
{
    while (!m_xml.atEnd()) {
        m_part->allowMore(LargestValue);
        if (m_xml.readNext() != QXmlStreamReader::StartElement || m_xml.name() != QLatin1String("row"))
            continue;
        *row = {};
        const quint64 number = m_xml.attributes().value(QLatin1String("r")).toULongLong();
        m_line = number > m_line ? number : m_line + 1;
        row->line = m_line;
        if (!readCells(row))
            break;
        if (!row->values.isEmpty() || !row->problem.isNull())
            return true;
    }
    if (m_xml.hasError() || m_part->hasFailed())
        *error = damaged();
    return false;
}

/// Reads to the end of the row; false if the sheet is damaged.
bool KNExcelReader::readCells(KNImportRow *row)
{
    while (!m_xml.atEnd()) {
        m_part->allowMore(LargestValue);
        const auto token = m_xml.readNext();
        if (token == QXmlStreamReader::EndElement && m_xml.name() == QLatin1String("row"))
            return true;
        if (token == QXmlStreamReader::StartElement && m_xml.name() == QLatin1String("c") && !readCell(row))
            return false;
    }
    return false;
}

/// Reads the text of the current element and of those in it, to its end.
QString KNExcelReader::readText()
{
    QString text;
    qsizetype begin = 0; // of the text of the current element
    int depth = 1;
    int phonetic = 0; // the depth of furigana beside the text
    while (depth > 0 && !m_xml.atEnd() && text.size() <= LargestValue) {
        m_part->allowMore(LargestValue);
        const auto token = m_xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            ++depth;
            begin = text.size();
            if (phonetic == 0 && m_xml.name() == QLatin1String("rPh"))
                phonetic = depth;
        } else if (token == QXmlStreamReader::EndElement) {
            KNExcelStrings::decodeEscapes(&text, begin);
            begin = text.size();
            phonetic = phonetic == depth ? 0 : phonetic;
            --depth;
        } else if (token == QXmlStreamReader::Characters && phonetic == 0) {
            text += m_xml.text();
        }
    }
    if (text.size() > LargestValue)
        m_xml.raiseError(valueTooLarge());
    return text;
}

bool KNExcelReader::readCell(KNImportRow *row)
{
    const auto attributes = m_xml.attributes();
    Cell cell{
        attributes.value(QLatin1String("t")).toString(), attributes.value(QLatin1String("s")).toString(), {}};
    const QStringView reference = attributes.value(QLatin1String("r"));
    const qsizetype column = reference.isEmpty() ? row->values.size() : columnOf(reference);
    while (!m_xml.atEnd()) {
        const auto token = m_xml.readNext();
        if (token == QXmlStreamReader::EndElement)
            break;
        if (token != QXmlStreamReader::StartElement)
            continue;
        const bool isValue = m_xml.name() == QLatin1String("v") || m_xml.name() == QLatin1String("is");
        const QString text = readText();
        if (isValue)
            cell.value = text.isNull() ? QStringLiteral("") : text;
    }
    if (m_xml.hasError() || column < 0 || column >= MostColumns) {
        m_xml.raiseError(tr("A cell has no column."));
        return false;
    }
    putValue(row, column, cell);
    return true;
}

void KNExcelReader::putValue(KNImportRow *row, qsizetype column, const Cell &cell)
{
    if (cell.value.isNull())
        return;
    QString value = cell.value;
    if (cell.type == QLatin1String("s")) {
        const auto shared = m_strings.at(cell.value);
        if (!shared)
            row->problem = tr("Cell %1 refers to a text that is not there.").arg(column + 1);
        value = shared.value_or(QString());
    } else if (cell.type == QLatin1String("e")) {
        row->problem = tr("Cell %1 contains the error %2.").arg(column + 1).arg(cell.value);
    } else if (cell.type.isEmpty() || cell.type == QLatin1String("n")) {
        const KNExcelStyles::Kind kind = m_styles.kindOf(cell.style);
        if (kind != KNExcelStyles::Kind::Number)
            value = KNExcelStyles::dateText(cell.value.toDouble(), kind, m_isSince1904);
        if (kind == KNExcelStyles::Kind::Number || value.isNull())
            value = shortestNumber(cell.value);
    }
    while (row->values.size() <= column)
        row->values.append(QString());
    row->values[column] = value;
}
