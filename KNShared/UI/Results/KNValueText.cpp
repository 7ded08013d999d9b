#include "UI/Results/KNValueText.h"

#include <QJsonDocument>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

constexpr int IndentWidth = 2;

QString lineStart(int depth)
{
    return QLatin1Char('\n') + QString(depth * IndentWidth, QLatin1Char(' '));
}

bool isJson(const QString &text)
{
    QJsonParseError error;
    QJsonDocument::fromJson(text.toUtf8(), &error);
    return error.error == QJsonParseError::NoError;
}

/// The position after the string literal that begins at `start`.
qsizetype endOfString(const QString &json, qsizetype start)
{
    for (qsizetype i = start + 1; i < json.size(); ++i) {
        if (json[i] == QLatin1Char('\\'))
            ++i;
        else if (json[i] == QLatin1Char('"'))
            return i + 1;
    }
    return json.size();
}

} // namespace

namespace KNValueText {

Form formOf(const KNValue &value)
{
    if (value.kind() == KNValue::Kind::Bytes)
        return Form::Hex;
    const QString text = value.text();
    const auto first = std::find_if(text.begin(), text.end(), [](QChar c) { return !c.isSpace(); });
    if (first == text.end())
        return Form::Text;
    if (*first == QLatin1Char('<') && !indentedXml(text).isNull())
        return Form::Xml;
    if ((*first == QLatin1Char('{') || *first == QLatin1Char('[')) && isJson(text))
        return Form::Json;
    return Form::Text;
}

QString text(const KNValue &value, Form form)
{
    const bool isBytes = value.kind() == KNValue::Kind::Bytes;
    if (form == Form::Hex)
        return hexDump(isBytes ? value.bytes() : value.displayText().toUtf8());
    QString shown;
    if (form == Form::Json)
        shown = indentedJson(value.text());
    else if (form == Form::Xml)
        shown = indentedXml(value.text());
    return shown.isNull() ? value.displayText() : shown;
}

QString indentedJson(const QString &json)
{
    if (!isJson(json))
        return {};
    QString indented;
    int depth = 0;
    bool isEmptyContainer = false; // a bracket was opened and is still empty
    for (qsizetype i = 0; i < json.size(); ++i) {
        const QChar c = json[i];
        if (c.isSpace())
            continue;
        const bool closes = c == QLatin1Char('}') || c == QLatin1Char(']');
        if (closes)
            --depth;
        if (isEmptyContainer != closes)
            indented += lineStart(depth);
        isEmptyContainer = c == QLatin1Char('{') || c == QLatin1Char('[');
        if (c == QLatin1Char('"')) {
            const qsizetype end = endOfString(json, i);
            indented += QStringView(json).mid(i, end - i);
            i = end - 1;
            continue;
        }
        indented += c;
        if (isEmptyContainer)
            ++depth;
        else if (c == QLatin1Char(','))
            indented += lineStart(depth);
        else if (c == QLatin1Char(':'))
            indented += QLatin1Char(' ');
    }
    return indented;
}

QString indentedXml(const QString &xml)
{
    if (!xml.trimmed().startsWith(QLatin1Char('<')))
        return {};
    // Values of type xml may have several root elements.
    const bool isDocument =
        xml.trimmed().startsWith(QLatin1String("<?xml")) || xml.contains(QLatin1String("<!DOCTYPE"));
    QXmlStreamReader reader;
    if (isDocument) {
        reader.addData(xml);
    } else {
        reader.addData(QStringLiteral("<fragment>"));
        reader.addData(xml);
        reader.addData(QStringLiteral("</fragment>"));
    }
    QString indented;
    QXmlStreamWriter writer(&indented);
    writer.setAutoFormatting(true);
    writer.setAutoFormattingIndent(IndentWidth);
    int depth = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isEndElement())
            --depth;
        const bool isOutside =
            !isDocument && depth == 0 && (reader.isStartElement() || reader.isEndElement());
        if (reader.isStartElement())
            ++depth;
        const bool isFrame = !isDocument && (reader.isStartDocument() || reader.isEndDocument());
        if (!isOutside && !isFrame && !reader.hasError() && !(reader.isWhitespace() && !reader.isCDATA()))
            writer.writeCurrentToken(reader);
    }
    if (reader.hasError())
        return {};
    return indented.trimmed();
}

QString hexDump(const QByteArray &bytes)
{
    constexpr qsizetype BytesPerLine = 16;
    QString dump;
    dump.reserve(bytes.size() / BytesPerLine * 80);
    for (qsizetype line = 0; line < bytes.size(); line += BytesPerLine) {
        const QByteArray part = bytes.mid(line, BytesPerLine);
        dump += QString::number(line, 16).rightJustified(8, QLatin1Char('0')) + QLatin1String("  ");
        for (qsizetype i = 0; i < BytesPerLine; ++i) {
            const auto byte = i < part.size() ? static_cast<unsigned char>(part[i]) : 0U;
            dump += i < part.size() ? QString::number(byte, 16).rightJustified(2, QLatin1Char('0')).toUpper()
                                    : QStringLiteral("  ");
            dump += QLatin1String(i == BytesPerLine / 2 - 1 ? "  " : " ");
        }
        dump += QLatin1Char(' ');
        for (const char c : part)
            dump += c >= 0x20 && c < 0x7F ? QLatin1Char(c) : QLatin1Char('.');
        dump += QLatin1Char('\n');
    }
    return dump;
}

QString withShortLines(const QString &text, qsizetype length, bool *wasBroken)
{
    *wasBroken = false;
    QString broken;
    qsizetype start = 0;
    while (start < text.size()) {
        const qsizetype lineEnd = text.indexOf(QLatin1Char('\n'), start);
        qsizetype end = lineEnd < 0 ? text.size() : lineEnd + 1;
        if (end - start > length) {
            *wasBroken = true;
            end = start + length - (text[start + length - 1].isHighSurrogate() ? 1 : 0);
            broken += QStringView(text).mid(start, end - start);
            broken += QLatin1Char('\n');
        } else {
            broken += QStringView(text).mid(start, end - start);
        }
        start = end;
    }
    return broken;
}

} // namespace KNValueText
