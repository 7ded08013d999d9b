#include "Export/JsonText.h"

QByteArray jsonString(const QString &text)
{
    static constexpr char digits[] = "0123456789abcdef";
    QByteArray json = "\"";
    const QByteArray utf8 = text.toUtf8();
    for (const char c : utf8) {
        switch (c) {
        case '"':
            json += "\\\"";
            break;
        case '\\':
            json += "\\\\";
            break;
        case '\n':
            json += "\\n";
            break;
        case '\r':
            json += "\\r";
            break;
        case '\t':
            json += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                json += "\\u00";
                json += digits[c >> 4];
                json += digits[c & 15];
            } else {
                json += c;
            }
        }
    }
    return json + '"';
}

QByteArray jsonValue(const KNValue &value)
{
    switch (value.kind()) {
    case KNValue::Kind::Null:
        return "null";
    case KNValue::Kind::Bool:
        return value.toBool() ? "true" : "false";
    case KNValue::Kind::Int32:
    case KNValue::Kind::Int64:
    case KNValue::Kind::Float:
    case KNValue::Kind::Double:
    case KNValue::Kind::Decimal:
        return value.displayText().toUtf8();
    case KNValue::Kind::Text:
    case KNValue::Kind::Date:
    case KNValue::Kind::Bytes:
        return jsonString(value.displayText());
    }
    return "null";
}
