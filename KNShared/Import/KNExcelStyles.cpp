#include "Import/KNExcelStyles.h"

#include <QDateTime>
#include <QXmlStreamReader>

#include <cmath>

using StyleKind = KNExcelStyles::Kind;

namespace {

constexpr qsizetype MostStyles = 100'000;

StyleKind kindFrom(bool hasDate, bool hasTime)
{
    if (hasDate)
        return hasTime ? StyleKind::DateAndTime : StyleKind::Date;
    return hasTime ? StyleKind::Time : StyleKind::Number;
}

} // namespace

StyleKind KNExcelStyles::kindOfFormat(const QString &format)
{
    bool hasDate = false;
    bool hasTime = false;
    bool hasMonthOrMinute = false;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar c = format[i].toLower();
        if (c == QLatin1Char('\\') || c == QLatin1Char('_') || c == QLatin1Char('*')) {
            ++i;
        } else if (c == QLatin1Char('"') || c == QLatin1Char('[')) {
            const QChar close = c == QLatin1Char('"') ? c : QLatin1Char(']');
            const qsizetype end = format.indexOf(close, i + 1);
            i = end < 0 ? format.size() : end;
        } else if (c == QLatin1Char(';')) {
            break;
        } else if (c == QLatin1Char('y') || c == QLatin1Char('d')) {
            hasDate = true;
        } else if (c == QLatin1Char('h') || c == QLatin1Char('s')) {
            hasTime = true;
        } else if (c == QLatin1Char('m')) {
            hasMonthOrMinute = true;
        }
    }
    return kindFrom(hasDate || (hasMonthOrMinute && !hasTime), hasTime);
}

StyleKind KNExcelStyles::builtIn(int format)
{
    if (format >= 14 && format <= 17)
        return StyleKind::Date;
    if ((format >= 18 && format <= 21) || (format >= 45 && format <= 47))
        return StyleKind::Time;
    return format == 22 ? StyleKind::DateAndTime : StyleKind::Number;
}

void KNExcelStyles::read(QIODevice *device)
{
    QXmlStreamReader xml(device);
    bool isInCellFormats = false;
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        const bool isCellFormats = xml.name() == QLatin1String("cellXfs");
        if (token == QXmlStreamReader::EndElement && isCellFormats)
            isInCellFormats = false;
        if (token != QXmlStreamReader::StartElement)
            continue;
        const auto attributes = xml.attributes();
        const int format = attributes.value(QLatin1String("numFmtId")).toInt();
        if (isCellFormats)
            isInCellFormats = true;
        else if (xml.name() == QLatin1String("numFmt") && m_formats.size() < MostStyles)
            m_formats.insert(format, kindOfFormat(attributes.value(QLatin1String("formatCode")).toString()));
        else if (isInCellFormats && xml.name() == QLatin1String("xf") && m_cells.size() < MostStyles)
            m_cells.append(m_formats.value(format, builtIn(format)));
    }
}

StyleKind KNExcelStyles::kindOf(QStringView style) const
{
    bool isNumber = false;
    const int index = style.toInt(&isNumber);
    return isNumber && index >= 0 && index < m_cells.size() ? m_cells[index] : StyleKind::Number;
}

QString KNExcelStyles::dateText(double serial, StyleKind kind, bool since1904)
{
    constexpr double LastDay = 2958466; // of the year 9999, exclusive
    if (!(serial >= 0 && serial < LastDay))
        return {};
    constexpr double MillisecondsPerDay = 24.0 * 60 * 60 * 1000;
    double day = std::floor(serial);
    qint64 milliseconds = std::llround((serial - day) * MillisecondsPerDay);
    if (milliseconds >= qint64(MillisecondsPerDay)) {
        milliseconds = 0;
        ++day;
    }
    const QTime time = QTime::fromMSecsSinceStartOfDay(static_cast<int>(milliseconds));
    const QString timeText =
        time.toString(time.msec() ? QStringLiteral("HH:mm:ss.zzz") : QStringLiteral("HH:mm:ss"));
    if (kind == StyleKind::Time)
        return day == 0 ? timeText : QString();
    // Day 60 is the 29 February 1900, which did not exist; the days before it are one less.
    constexpr double MissingDay = 60;
    if (!since1904 && day == MissingDay)
        return {};
    const QDate first = since1904          ? QDate(1904, 1, 1)
                        : day < MissingDay ? QDate(1899, 12, 31)
                                           : QDate(1899, 12, 30);
    const QString date = first.addDays(static_cast<qint64>(day)).toString(QStringLiteral("yyyy-MM-dd"));
    return kind == StyleKind::Date && milliseconds == 0 ? date : date + QLatin1Char('T') + timeText;
}
