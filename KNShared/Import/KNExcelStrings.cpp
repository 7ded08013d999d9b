#include "Import/KNExcelStrings.h"

#include "Foundation/KNUtf8.h"
#include "Import/KNImportReader.h"
#include "Import/KNZipFile.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

void KNExcelStrings::decodeEscapes(QString *text, qsizetype begin)
{
    static const QRegularExpression escape(QStringLiteral("_x([0-9A-Fa-f]{4})_"));
    qsizetype position = text->indexOf(QLatin1String("_x"), begin);
    if (position < 0)
        return;
    QString decoded = text->left(position);
    for (auto matches = escape.globalMatch(*text, position); matches.hasNext();) {
        const auto match = matches.next();
        decoded += QStringView(*text).mid(position, match.capturedStart() - position);
        decoded += QChar(match.capturedView(1).toUShort(nullptr, 16));
        position = match.capturedEnd();
    }
    *text = decoded.append(QStringView(*text).mid(position));
}

bool KNExcelStrings::append(const QString &text)
{
    constexpr size_t MostTexts = 8'000'000; // 64 MB of positions
    const QByteArray utf8 = text.toUtf8();
    m_ends.push_back((m_ends.empty() ? 0 : m_ends.back()) + utf8.size());
    return m_ends.size() <= MostTexts && m_file.write(utf8) == utf8.size();
}

bool KNExcelStrings::read(KNZipPart *part)
{
    if (!m_file.open())
        return false;
    QXmlStreamReader xml(part);
    QString text;
    qsizetype begin = 0; // of the text of the current element
    bool isText = false;
    bool isPhonetic = false; // furigana beside a text
    while (!xml.atEnd()) {
        part->allowMore(KNImportReader::LargestValue);
        const auto token = xml.readNext();
        const QStringView name = xml.name();
        if (token == QXmlStreamReader::Characters && isText && !isPhonetic)
            text += xml.text();
        if (token != QXmlStreamReader::StartElement && token != QXmlStreamReader::EndElement)
            continue;
        const bool begins = token == QXmlStreamReader::StartElement;
        if (name == QLatin1String("t")) {
            isText = begins;
            if (begins)
                begin = text.size();
            else
                decodeEscapes(&text, begin);
        } else if (name == QLatin1String("rPh"))
            isPhonetic = begins;
        else if (name == QLatin1String("si") && !begins && !append(std::exchange(text, {})))
            return false;
        if (text.size() > KNImportReader::LargestValue)
            return false;
    }
    return !xml.hasError() && !part->hasFailed() && m_file.flush();
}

std::optional<QString> KNExcelStrings::at(QStringView index)
{
    bool isNumber = false;
    const size_t position = index.toULongLong(&isNumber);
    if (!isNumber || position >= m_ends.size())
        return std::nullopt;
    const qint64 begin = position == 0 ? 0 : m_ends[position - 1];
    const qint64 size = m_ends[position] - begin;
    if (!m_file.seek(begin))
        return std::nullopt;
    const QByteArray utf8 = m_file.read(size);
    if (utf8.size() != size)
        return std::nullopt;
    return KNTextFromUtf8(utf8);
}
