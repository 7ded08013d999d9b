#include "Import/KNCsvReader.h"

#include "Foundation/KNUtf8.h"

#include <csv.h>

#include <algorithm>

namespace {

/// A byte that no UTF-8 text contains.
constexpr unsigned char NoQuote = 0xff;

int isNoBlank(unsigned char)
{
    return 0;
}

/// Most values are ASCII, which needs no decoder.
QString textFromUtf8(QByteArrayView utf8, bool *isValid)
{
    if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return QString::fromLatin1(utf8);
    return KNTextFromUtf8(utf8, isValid);
}

/// Refuses to keep a value that is too large.
void *limitedRealloc(void *memory, size_t size)
{
    constexpr size_t Slack = 128 * 1024;
    return size > static_cast<size_t>(KNImportReader::LargestValue) + Slack ? nullptr : realloc(memory, size);
}

/// The separator that the first line contains most often outside of quotes; a comma by default.
QChar suggestedSeparator(const QString &path, KNImportTextSource::Encoding encoding)
{
    KNImportTextSource source;
    KNError ignored;
    if (!source.open(path, encoding, &ignored))
        return QLatin1Char(',');
    constexpr char Candidates[] = {',', ';', '\t', '|'};
    qsizetype counts[std::size(Candidates)] = {};
    bool isQuoted = false;
    const QByteArray beginning = source.read(&ignored);
    for (const char c : beginning) {
        isQuoted = isQuoted != (c == '"');
        if (!isQuoted && (c == '\n' || c == '\r'))
            break;
        const auto *const candidate = std::find(std::begin(Candidates), std::end(Candidates), c);
        if (!isQuoted && candidate != std::end(Candidates))
            ++counts[candidate - std::begin(Candidates)];
    }
    return QLatin1Char(Candidates[std::max_element(std::begin(counts), std::end(counts)) - counts]);
}

} // namespace

struct KNCsvReader::Parser
{
    Parser()
    {
        csv_init(&state, CSV_STRICT | CSV_STRICT_FINI | CSV_EMPTY_IS_NULL);
        csv_set_space_func(&state, isNoBlank);
        csv_set_realloc_func(&state, limitedRealloc);
        csv_set_blk_size(&state, 64 * 1024);
    }
    ~Parser() { csv_free(&state); }
    Parser(const Parser &) = delete;
    Parser &operator=(const Parser &) = delete;

    static void value(void *text, size_t size, void *reader)
    {
        static_cast<KNCsvReader *>(reader)->addValue(static_cast<const char *>(text),
                                                     static_cast<qsizetype>(size));
    }
    static void row(int, void *reader) { static_cast<KNCsvReader *>(reader)->endRow(); }

    csv_parser state = {};
};

KNCsvReader::KNCsvReader()
    : m_parser(std::make_unique<Parser>())
{
}

KNCsvReader::~KNCsvReader() = default;

std::unique_ptr<KNImportReader> KNCsvReader::open(const KNImportFile &file, KNError *error)
{
    KNImportFile complete = file;
    if (complete.separator.isNull())
        complete.separator = suggestedSeparator(file.path, file.encoding);
    std::unique_ptr<KNCsvReader> reader(new KNCsvReader);
    return reader->start(complete, error) ? std::move(reader) : nullptr;
}

std::unique_ptr<KNImportReader> KNCsvReader::openTabs(const KNImportFile &file, KNError *error)
{
    KNImportFile complete = file;
    complete.separator = QLatin1Char('\t');
    return open(complete, error);
}

bool KNCsvReader::start(const KNImportFile &file, KNError *error)
{
    error->clear();
    const ushort separator = file.separator.unicode();
    const ushort quote = file.quote.isNull() ? NoQuote : file.quote.unicode();
    const auto isUsable = [](ushort c) { return c < 0x80 && c != '\n' && c != '\r'; };
    if (!isUsable(separator) || (quote != NoQuote && !isUsable(quote)) || separator == quote) {
        *error = fileError(tr("Separator and quote are two different characters of ASCII."));
        return false;
    }
    m_isEncodingAssumed = file.encoding == KNImportTextSource::Encoding::Detect;
    csv_set_delim(&m_parser->state, static_cast<unsigned char>(separator));
    csv_set_quote(&m_parser->state, static_cast<unsigned char>(quote));
    return m_lines.source.open(file.path, file.encoding, error) &&
           readHeader(file.hasHeader, tr("The file is empty."), error);
}

QString KNCsvReader::assumedEncoding() const
{
    const bool isWindows1252 = m_lines.source.encoding() == KNImportTextSource::Encoding::Windows1252;
    return m_isEncodingAssumed && isWindows1252 ? QStringLiteral("Windows-1252") : QString();
}

bool KNCsvReader::readRow(KNImportRow *row, KNError *error)
{
    error->clear();
    if (!takeRow(row, error))
        return false;
    if (row->problem.isNull() && row->values.size() != columns().size())
        row->problem = tr("The line has %1 values, but there are %2 columns.")
                           .arg(row->values.size())
                           .arg(columns().size());
    return true;
}

bool KNCsvReader::nextRow(KNImportRow *row, KNError *error)
{
    return m_rows.next(
        m_lines,
        [this](QByteArrayView piece, KNError *failure) {
            return piece.isEmpty() ? finish(failure) : parse(piece, failure);
        },
        row, error);
}

bool KNCsvReader::parse(QByteArrayView piece, KNError *error)
{
    if (m_isRowOver)
        m_current.line = m_lines.line();
    m_isRowOver = m_current.values.isEmpty() && (piece == "\n" || piece == "\r\n" || piece == "\r") &&
                  m_current.line == m_lines.line();
    const auto size = static_cast<size_t>(piece.size());
    const size_t parsed = csv_parse(&m_parser->state, piece.data(), size, Parser::value, Parser::row, this);
    if (parsed != size)
        *error = parseError(m_lines.line(), m_lines.offset() + static_cast<qsizetype>(parsed));
    else if (m_hasTooMany)
        *error = errorAt(m_lines.line(), 0, tr("A row has more than %1 values.").arg(MostColumns));
    return !*error;
}

bool KNCsvReader::finish(KNError *error)
{
    if (csv_fini(&m_parser->state, Parser::value, Parser::row, this) != 0)
        *error = errorAt(m_current.line, 0,
                         tr("The file ends inside of a quoted value of the row that begins here."));
    return !*error;
}

KNError KNCsvReader::parseError(quint64 line, qsizetype character) const
{
    if (csv_error(const_cast<csv_parser *>(&m_parser->state)) != CSV_EPARSE)
        return errorAt(m_current.line, 0, valueTooLarge());
    return errorAt(line, character,
                   tr("A quote is neither doubled nor at the end of its value. If the file does not quote "
                      "values, choose no quote."));
}

void KNCsvReader::addValue(const char *utf8, qsizetype size)
{
    if (m_current.values.size() >= MostColumns) {
        m_hasTooMany = true;
        return;
    }
    if (!utf8) {
        m_current.values.append(QString());
        return;
    }
    bool isValid = true;
    const QString value = textFromUtf8({utf8, size}, &isValid);
    if (!isValid && m_current.problem.isNull())
        m_current.problem =
            tr("Value %1 is not valid UTF-8. Choose the file's encoding.").arg(m_current.values.size() + 1);
    m_current.values.append(value.isNull() ? QStringLiteral("") : value);
}

void KNCsvReader::endRow()
{
    m_isRowOver = true;
    m_rows.append(std::exchange(m_current, {}));
}
