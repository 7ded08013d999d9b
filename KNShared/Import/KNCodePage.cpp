#include "Import/KNCodePage.h"

#include "Foundation/KNFormat.h"

#include <algorithm>
#include <array>
#include <iconv.h>

namespace {

constexpr int Utf8 = 65001;
constexpr unsigned FirstLead = 0x80; // all code pages of SQL databases begin with ASCII

/// Decodes single characters with the system's converter.
class Decoder
{
public:
    explicit Decoder(const QByteArray &name)
        : m_converter(iconv_open("UTF-16LE", name.constData()))
    {
    }
    ~Decoder()
    {
        if (isOpen())
            iconv_close(m_converter);
    }
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;

    bool isOpen() const
    {
        return m_converter != reinterpret_cast<iconv_t>(-1); // NOLINT(performance-no-int-to-ptr)
    }

    /// The UTF-16 unit of a character's bytes; empty if they are no character of one unit.
    std::optional<unsigned> unitOf(std::initializer_list<unsigned char> bytes)
    {
        std::array<char, 2> input{};
        std::copy(bytes.begin(), bytes.end(), input.begin());
        std::array<unsigned char, 8> output{};
        char *from = input.data();
        auto *to = reinterpret_cast<char *>(output.data());
        size_t unread = bytes.size();
        size_t space = output.size();
        iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
        const bool isDecoded = iconv(m_converter, &from, &unread, &to, &space) != static_cast<size_t>(-1);
        if (!isDecoded || unread != 0 || space != output.size() - 2)
            return std::nullopt;
        return output[0] | static_cast<unsigned>(output[1]) << 8;
    }

private:
    iconv_t m_converter;
};

void readCharacters(Decoder &decoder, std::vector<unsigned char> *sizes)
{
    const auto add = [sizes](std::optional<unsigned> unit, unsigned char size) {
        if (unit && sizes->at(*unit) == 0)
            sizes->at(*unit) = size;
        return unit.has_value();
    };
    for (unsigned lead = 0; lead <= 0xff; ++lead) {
        const auto first = static_cast<unsigned char>(lead);
        if (add(decoder.unitOf({first}), 1) || lead < FirstLead)
            continue;
        for (unsigned trail = 0x30; trail <= 0xff; ++trail)
            add(decoder.unitOf({first, static_cast<unsigned char>(trail)}), 2);
    }
}

qsizetype utf8Size(QStringView text)
{
    qsizetype size = 0;
    for (const QChar c : text)
        size += c.unicode() < 0x80 ? 1 : c.unicode() < 0x800 ? 2 : c.isSurrogate() ? 2 : 3;
    return size;
}

} // namespace

KNCodePage::KNCodePage(int number)
    : m_number(number)
    , m_isUtf8(number == Utf8)
{
    if (m_isUtf8 || number <= 0)
        return;
    Decoder decoder(KNFormat("CP%d", number).toLatin1());
    if (!decoder.isOpen())
        return;
    const auto sizes = std::make_shared<Sizes>(0x10000);
    readCharacters(decoder, sizes.get());
    m_sizes = sizes;
}

std::optional<qsizetype> KNCodePage::sizeOf(QStringView text, QString *missing) const
{
    if (m_isUtf8)
        return utf8Size(text);
    qsizetype size = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        const int bytes = unit < 0x80 ? 1 : m_sizes ? m_sizes->at(unit) : 0;
        if (bytes == 0) {
            *missing = text.mid(i, text[i].isHighSurrogate() ? 2 : 1).toString();
            return std::nullopt;
        }
        size += bytes;
    }
    return size;
}
