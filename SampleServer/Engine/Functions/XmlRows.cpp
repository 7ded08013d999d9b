#include "Engine/Functions/XmlRows.h"
#include "Engine/Functions/Conversion.h"
#include "Types/Text.h"
#include "Types/TypeTraits.h"

#include <charconv>

namespace SampleServer {

namespace {

std::string escaped(std::string_view text, bool inAttribute)
{
    std::string result;
    for (const char c : text)
        if (c == '&')
            result += "&amp;";
        else if (c == '<')
            result += "&lt;";
        else if (c == '>')
            result += "&gt;";
        else if (c == '"' && inAttribute)
            result += "&quot;";
        else if (c == '\r')
            result += "&#x0D;";
        else
            result += c;
    return result;
}

std::string base64(const Bytes &bytes)
{
    static constexpr char digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        unsigned group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= count ? digits[group >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

std::string xmlText(const Value &value, const SqlType &type)
{
    if (const auto *bytes = std::get_if<Bytes>(&value))
        return base64(*bytes);
    return textOf(value, type, isMoney(type.id) ? 2 : isDateTime(type.id) ? 126 : 0);
}

std::vector<std::string> steps(const std::string &path)
{
    std::vector<std::string> result;
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        result.push_back(path.substr(at, end - at));
        at = end + 1;
    }
    return result;
}

bool isText(const std::string &step)
{
    return step.empty() || step == "*" || step == "text()" || step == "node()" || step == "data()";
}

/// Writes one row. The start tag of the row stays open for as long as attributes may come.
class XmlRowWriter
{
public:
    XmlRowWriter(std::string &xml, const XmlShape &shape)
        : m_xml(xml)
        , m_shape(shape)
    {
        if (!shape.rowTag.empty())
            m_xml += '<' + shape.rowTag;
        m_tagOpen = !shape.rowTag.empty();
    }

    void add(const XmlShape::Column &column, const Value &value)
    {
        if (isNull(value))
            return;
        std::vector<std::string> path = steps(column.path);
        const std::string last = path.back();
        const bool attribute = m_shape.attributes || last.starts_with('@');
        path.pop_back();
        const bool element = !attribute && !isText(last);
        enter(path);
        if (attribute) {
            m_xml += ' ' + (last.starts_with('@') ? last.substr(1) : last) + "=\"" +
                     escaped(xmlText(value, column.type), true) + '"';
            return;
        }
        closeTag();
        if (element)
            m_xml += '<' + last + '>';
        m_xml += column.type.id == TypeId::Xml ? std::get<std::string>(value)
                                               : escaped(xmlText(value, column.type), false);
        if (element)
            m_xml += "</" + last + '>';
    }

    void finish()
    {
        enter({});
        if (m_shape.rowTag.empty())
            return;
        m_xml += m_tagOpen ? "/>" : "</" + m_shape.rowTag + '>';
    }

private:
    /// Leaves and enters elements until exactly those of `path` are open.
    void enter(const std::vector<std::string> &path)
    {
        std::size_t shared = 0;
        while (shared < path.size() && shared < m_open.size() && path[shared] == m_open[shared])
            ++shared;
        while (m_open.size() > shared) {
            if (m_tagOpen)
                m_xml += "/>";
            else
                m_xml += "</" + m_open.back() + '>';
            m_tagOpen = false;
            m_open.pop_back();
        }
        for (; shared < path.size(); ++shared) {
            closeTag();
            m_xml += '<' + path[shared];
            m_open.push_back(path[shared]);
            m_tagOpen = true;
        }
    }
    void closeTag()
    {
        if (m_tagOpen)
            m_xml += '>';
        m_tagOpen = false;
    }

    std::string &m_xml;
    const XmlShape &m_shape;
    std::vector<std::string> m_open;
    bool m_tagOpen = false;
};

void appendEntity(std::string &text, std::string_view name)
{
    static constexpr std::pair<std::string_view, char> known[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto &[entity, character] : known)
        if (entity == name) {
            text += character;
            return;
        }
    if (name.starts_with('#')) {
        const bool hex = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
        const char *start = name.data() + (hex ? 2 : 1);
        unsigned code = 0;
        std::from_chars(start, name.data() + name.size(), code, hex ? 16 : 10);
        appendUtf8(text, static_cast<char32_t>(code));
    }
}

} // namespace

void appendXmlRow(std::string &xml, const XmlShape &shape, std::span<const Value> values)
{
    XmlRowWriter writer(xml, shape);
    for (std::size_t i = 0; i < values.size(); ++i)
        writer.add(shape.columns[i], values[i]);
    writer.finish();
}

std::string textOfXml(std::string_view xml)
{
    std::string text;
    for (std::size_t at = 0; at < xml.size();) {
        if (xml.substr(at).starts_with("<![CDATA[")) {
            const std::size_t end = std::min(xml.find("]]>", at), xml.size());
            text += xml.substr(at + 9, end - at - 9);
            at = end + 3;
        } else if (xml[at] == '<') {
            at = std::min(xml.find('>', at), xml.size() - 1) + 1;
        } else if (xml[at] == '&') {
            const std::size_t end = std::min(xml.find(';', at), xml.size() - 1);
            appendEntity(text, xml.substr(at + 1, end - at - 1));
            at = end + 1;
        } else {
            text += xml[at++];
        }
    }
    return text;
}

} // namespace SampleServer
