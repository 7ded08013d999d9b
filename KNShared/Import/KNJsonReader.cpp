#include "Import/KNJsonReader.h"

#include "Foundation/KNUtf8.h"

#include <yajl/yajl_gen.h>
#include <yajl/yajl_parse.h>

namespace {

constexpr int DeepestNesting = 100; // yajl_gen allows 128

QString textOf(const unsigned char *utf8, size_t size)
{
    return KNTextFromUtf8(QByteArrayView(utf8, static_cast<qsizetype>(size)));
}

} // namespace

/// The callbacks of yajl. A list of records may be an array; a record is an object; what is nested in a
/// record is written as JSON again.
struct KNJsonReader::Parser
{
    explicit Parser(KNJsonReader &its)
        : reader(its)
        , handle(yajl_alloc(&callbacks, nullptr, this))
    {
        yajl_config(handle, yajl_allow_multiple_values, 1);
    }
    ~Parser()
    {
        yajl_free(handle);
        endNested();
    }
    Parser(const Parser &) = delete;
    Parser &operator=(const Parser &) = delete;

    static Parser &self(void *context)
    {
        auto *const parser = static_cast<Parser *>(context);
        parser->reader.m_unparsed = 0;
        return *parser;
    }

    int scalar(const QString &value)
    {
        return isInRecord ? reader.setValue(value)
                          : reader.refuse(KNJsonReader::tr("A record is an object."));
    }
    int opened(bool isObject)
    {
        if (isInRecord)
            return beginNested();
        if (isObject)
            return isInRecord = true, reader.beginRecord();
        if (isInList)
            return reader.refuse(KNJsonReader::tr("A record is an object."));
        return isInList = true;
    }
    int closed(bool isObject)
    {
        if (isObject) {
            isInRecord = false;
            return reader.endRecord();
        }
        isInList = false;
        return true;
    }

    int beginNested()
    {
        nested = yajl_gen_alloc(nullptr);
        depth = 0;
        return true;
    }
    void endNested()
    {
        if (nested)
            yajl_gen_free(nested);
        nested = nullptr;
    }
    /// After a token of a nested value was written; `step` is 1 for one that opens, -1 for one that closes.
    int written(yajl_gen_status status, int step = 0)
    {
        depth += step;
        const unsigned char *text = nullptr;
        size_t size = 0;
        yajl_gen_get_buf(nested, &text, &size);
        if (status != yajl_gen_status_ok && status != yajl_gen_generation_complete)
            return reader.refuse(KNJsonReader::tr("A nested value cannot be written as text."));
        if (depth > DeepestNesting)
            return reader.refuse(
                KNJsonReader::tr("Values are nested more than %1 levels deep.").arg(DeepestNesting));
        if (static_cast<qsizetype>(size) > LargestValue)
            return reader.refuse(valueTooLarge());
        if (depth > 0)
            return true;
        const QString value = textOf(text, size);
        endNested();
        return reader.setValue(value);
    }

    static int null(void *context)
    {
        Parser &p = self(context);
        return p.nested ? p.written(yajl_gen_null(p.nested)) : p.scalar(QString());
    }
    static int boolean(void *context, int value)
    {
        Parser &p = self(context);
        return p.nested ? p.written(yajl_gen_bool(p.nested, value))
                        : p.scalar(value ? QStringLiteral("true") : QStringLiteral("false"));
    }
    static int number(void *context, const char *digits, size_t size)
    {
        Parser &p = self(context);
        return p.nested ? p.written(yajl_gen_number(p.nested, digits, size))
                        : p.scalar(QString::fromLatin1(digits, static_cast<qsizetype>(size)));
    }
    static int string(void *context, const unsigned char *utf8, size_t size)
    {
        Parser &p = self(context);
        return p.nested ? p.written(yajl_gen_string(p.nested, utf8, size)) : p.scalar(textOf(utf8, size));
    }
    static int key(void *context, const unsigned char *utf8, size_t size)
    {
        Parser &p = self(context);
        return p.nested ? p.written(yajl_gen_string(p.nested, utf8, size))
                        : static_cast<int>(p.reader.setKey(textOf(utf8, size)));
    }
    static int open(Parser &p, bool isObject)
    {
        if (!p.nested && !p.opened(isObject))
            return false;
        if (!p.nested)
            return true;
        return p.written(isObject ? yajl_gen_map_open(p.nested) : yajl_gen_array_open(p.nested), 1);
    }
    static int close(Parser &p, bool isObject)
    {
        if (!p.nested)
            return p.closed(isObject);
        return p.written(isObject ? yajl_gen_map_close(p.nested) : yajl_gen_array_close(p.nested), -1);
    }
    static int startMap(void *context) { return open(self(context), true); }
    static int endMap(void *context) { return close(self(context), true); }
    static int startArray(void *context) { return open(self(context), false); }
    static int endArray(void *context) { return close(self(context), false); }

    static constexpr yajl_callbacks callbacks = {null,     boolean, nullptr, nullptr,    number,  string,
                                                 startMap, key,     endMap,  startArray, endArray};

    KNJsonReader &reader;
    yajl_handle handle;
    yajl_gen nested = nullptr; ///< the nested value that is being read
    int depth = 0;             ///< of the nested value
    bool isInList = false;
    bool isInRecord = false;
};

KNJsonReader::KNJsonReader()
    : m_parser(std::make_unique<Parser>(*this))
{
}

KNJsonReader::~KNJsonReader() = default;

std::unique_ptr<KNImportReader> KNJsonReader::open(const KNImportFile &file, KNError *error)
{
    error->clear();
    std::unique_ptr<KNJsonReader> reader(new KNJsonReader);
    using Encoding = KNImportTextSource::Encoding;
    KNImportTextSource &source = reader->m_lines.source;
    if (!source.open(file.path, file.encoding, error))
        return nullptr;
    // JSON is Unicode: other bytes are an error, not Windows-1252.
    if (file.encoding == Encoding::Detect && source.encoding() == Encoding::Windows1252 &&
        !source.open(file.path, Encoding::UTF8, error))
        return nullptr;
    KNImportRow first;
    if (reader->readRow(&first, error))
        reader->m_rows.prepend(first);
    else if (!*error)
        *error = fileError(tr("The file contains no records."));
    if (*error)
        return nullptr;
    return reader;
}

bool KNJsonReader::readRow(KNImportRow *row, KNError *error)
{
    error->clear();
    return m_rows.next(
        m_lines,
        [this](QByteArrayView piece, KNError *failure) {
            return piece.isEmpty() ? finish(failure) : parse(piece, failure);
        },
        row, error);
}

bool KNJsonReader::parse(QByteArrayView piece, KNError *error)
{
    m_unparsed += piece.size();
    m_isBlank = m_isBlank && piece.trimmed().isEmpty();
    const auto *const bytes = reinterpret_cast<const unsigned char *>(piece.data());
    const auto size = static_cast<size_t>(piece.size());
    const auto position = [this] {
        return m_lines.offset() + static_cast<qsizetype>(yajl_get_bytes_consumed(m_parser->handle));
    };
    if (!m_escapes.accepts(piece)) {
        *error =
            errorAt(m_lines.line(), 0, tr("An escape is half of a surrogate pair, which is no character."));
        return false;
    }
    const yajl_status status = yajl_parse(m_parser->handle, bytes, size);
    if (!m_refusal.isNull())
        *error = errorAt(m_lines.line(), position(), m_refusal);
    else if (status != yajl_status_ok)
        *error = errorAt(m_lines.line(), position(), tr("This is not valid JSON."));
    else if (m_unparsed > LargestValue)
        *error = errorAt(m_lines.line(), 0, valueTooLarge());
    return !*error;
}

bool KNJsonReader::finish(KNError *error)
{
    if (m_isBlank)
        return true;
    const bool isComplete = yajl_complete_parse(m_parser->handle) == yajl_status_ok;
    if (!m_refusal.isNull())
        *error = errorAt(m_lines.line(), 0, m_refusal);
    else if (!isComplete || m_parser->isInList || m_parser->isInRecord)
        *error = errorAt(m_lines.line(), 0, tr("The file ends in the middle of a value."));
    return !*error;
}

bool KNJsonReader::refuse(const QString &reason)
{
    m_refusal = reason;
    return false;
}

bool KNJsonReader::beginRecord()
{
    m_current = {};
    m_current.line = m_lines.line();
    m_current.values = QStringList(m_columns.size());
    m_isSet.fill(false, m_columns.size());
    return true;
}

bool KNJsonReader::endRecord()
{
    m_rows.append(std::exchange(m_current, {}));
    return true;
}

bool KNJsonReader::setKey(const QString &key)
{
    const auto known = m_positions.constFind(key);
    if (known != m_positions.constEnd()) {
        m_key = *known;
        if (m_isSet[m_key])
            m_current.problem = tr("The key \"%1\" is there twice.").arg(key);
        return true;
    }
    if (m_columns.size() >= MostColumns)
        return refuse(tr("There are more than %1 different keys.").arg(MostColumns));
    m_key = m_columns.size();
    m_positions.insert(key, m_key);
    m_columns.append(key.isEmpty() ? QStringLiteral("Column%1").arg(m_key + 1) : key);
    m_current.values.append(QString());
    m_isSet.append(false);
    return true;
}

bool KNJsonReader::setValue(const QString &value)
{
    m_current.values[m_key] = value;
    m_isSet[m_key] = true;
    return true;
}
