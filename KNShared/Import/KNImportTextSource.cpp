#include "Import/KNImportTextSource.h"

#include <QFileInfo>

#include <iterator>

using TextEncoding = KNImportTextSource::Encoding;

namespace {

constexpr qint64 PieceSize = 64 * 1024;
const QString ImportDomain = QStringLiteral("com.quorvex.vantor.import");

QByteArray markOf(TextEncoding encoding)
{
    switch (encoding) {
    case TextEncoding::UTF8:
        return QByteArray("\xef\xbb\xbf");
    case TextEncoding::UTF16LittleEndian:
        return QByteArray("\xff\xfe");
    case TextEncoding::UTF16BigEndian:
        return QByteArray("\xfe\xff");
    default:
        return {};
    }
}

/// Whether the text is UTF-8, apart from a character that its end cuts.
bool isUtf8(QByteArray text)
{
    constexpr int LongestRest = 3;
    for (int dropped = 0; dropped <= LongestRest; ++dropped) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString ignored = decoder(text);
        if (!decoder.hasError())
            return true;
        if (text.isEmpty() || static_cast<unsigned char>(text.back()) < 0x80)
            return false;
        text.chop(1);
    }
    return false;
}

/// The five bytes without a character become control characters of the same number.
QString fromWindows1252(const QByteArray &bytes)
{
    constexpr uchar First = 0x80;
    constexpr char16_t Characters[] =
        u"\u20AC\u0081\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u008D\u017D\u008F"
        u"\u0090\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u02DC\u2122\u0161\u203A\u0153\u009D\u017E\u0178";
    QString text = QString::fromLatin1(bytes);
    for (QChar &c : text) {
        if (c.unicode() >= First && c.unicode() < First + std::size(Characters) - 1)
            c = Characters[c.unicode() - First];
    }
    return text;
}

} // namespace

TextEncoding KNImportTextSource::detected(const QByteArray &beginning)
{
    for (const TextEncoding marked :
         {TextEncoding::UTF8, TextEncoding::UTF16LittleEndian, TextEncoding::UTF16BigEndian}) {
        if (beginning.startsWith(markOf(marked)))
            return marked;
    }
    qsizetype zeros[2] = {0, 0};
    for (qsizetype i = 0; i < beginning.size(); ++i)
        zeros[i % 2] += beginning[i] == '\0';
    const qsizetype many = beginning.size() / 5;
    if (zeros[1] > many && zeros[0] < zeros[1] / 4)
        return TextEncoding::UTF16LittleEndian;
    if (zeros[0] > many && zeros[1] < zeros[0] / 4)
        return TextEncoding::UTF16BigEndian;
    return isUtf8(beginning) ? TextEncoding::UTF8 : TextEncoding::Windows1252;
}

bool KNImportTextSource::open(const QString &path, TextEncoding encoding, KNError *error)
{
    m_file.close();
    m_file.setFileName(path);
    if (!QFileInfo(path).isFile() || !m_file.open(QIODevice::ReadOnly)) {
        const QString why = m_file.error() == QFile::NoError ? tr("It is not a file") : m_file.errorString();
        *error = KNError(ImportDomain, 0, tr("\"%1\" cannot be read: %2.").arg(path, why));
        return false;
    }
    m_beginning = m_file.read(PieceSize);
    m_encoding = encoding == TextEncoding::Detect ? detected(m_beginning) : encoding;
    if (const QByteArray mark = markOf(m_encoding); !mark.isEmpty() && m_beginning.startsWith(mark))
        m_beginning.remove(0, mark.size());
    if (m_encoding == TextEncoding::UTF16LittleEndian)
        m_decoder = QStringDecoder(QStringDecoder::Utf16LE, QStringDecoder::Flag::ConvertInitialBom);
    else if (m_encoding == TextEncoding::UTF16BigEndian)
        m_decoder = QStringDecoder(QStringDecoder::Utf16BE, QStringDecoder::Flag::ConvertInitialBom);
    m_encoder = QStringEncoder(QStringEncoder::Utf8);
    return true;
}

QByteArray KNImportTextSource::read(KNError *error)
{
    const QByteArray bytes = m_beginning.isEmpty() ? m_file.read(PieceSize) : std::exchange(m_beginning, {});
    if (bytes.isEmpty() && m_file.error() != QFile::NoError)
        *error = KNError(ImportDomain, 0,
                         tr("\"%1\" cannot be read: %2.").arg(m_file.fileName(), m_file.errorString()));
    return convert(bytes, error);
}

QByteArray KNImportTextSource::convert(const QByteArray &bytes, KNError *error)
{
    if (m_encoding == TextEncoding::UTF8)
        return bytes;
    if (m_encoding == TextEncoding::Windows1252)
        return fromWindows1252(bytes).toUtf8();
    const QString text = m_decoder(bytes);
    const QByteArray utf8 = m_encoder(text);
    const bool isCut = bytes.isEmpty() && m_file.size() % 2 != 0;
    if (!isCut && !m_decoder.hasError() && !m_encoder.hasError())
        return utf8;
    *error = KNError(ImportDomain, 0,
                     tr("\"%1\" is not valid UTF-16: a character is incomplete near byte %2.")
                         .arg(m_file.fileName())
                         .arg(m_file.pos()));
    return {};
}

double KNImportTextSource::progress() const
{
    return m_file.size() > 0 ? double(m_file.pos()) / double(m_file.size()) : 1;
}
