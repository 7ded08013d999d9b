#include "SQL/Snippets/KNExpandedSnippet.h"

#include <QMap>

#include <optional>

namespace {

constexpr qsizetype LongestNumber = 2; ///< digits of a stop

/// A tab stop in the text of a snippet.
struct StopMark
{
    int number;
    std::optional<QString> text; ///< the default
    qsizetype end;               ///< behind the mark
};

/// Reads the stop that begins with the dollar sign at `location`.
std::optional<StopMark> stopAt(const QString &snippet, qsizetype location)
{
    qsizetype at = location + 1;
    const bool hasBraces = at < snippet.size() && snippet[at] == u'{';
    at += hasBraces ? 1 : 0;
    const qsizetype digits = at;
    while (at < snippet.size() && at < digits + LongestNumber && snippet[at] >= u'0' && snippet[at] <= u'9')
        ++at;
    if (at == digits)
        return std::nullopt;
    StopMark stop{snippet.mid(digits, at - digits).toInt(), std::nullopt, at};
    if (!hasBraces)
        return stop;
    const qsizetype end = snippet.indexOf(u'}', at);
    if (end < 0 || (snippet[at] != u':' && end != at))
        return std::nullopt;
    if (end > at)
        stop.text = snippet.mid(at + 1, end - at - 1);
    stop.end = end + 1;
    return stop;
}

class SnippetReader
{
public:
    SnippetReader(const QString &snippet, const QString &lineEnd)
        : m_snippet(snippet)
        , m_lineEnd(lineEnd)
    {
        readDefaults();
    }

    KNExpandedSnippet read()
    {
        for (qsizetype at = 0; at < m_snippet.size();)
            at = readAt(at);
        KNExpandedSnippet expanded;
        expanded.text = m_text;
        const QList<KNRange> end = m_places.take(0);
        for (const QList<KNRange> &places : std::as_const(m_places))
            expanded.stops.append(places);
        expanded.stops.append(end.isEmpty() ? QList<KNRange>{{m_text.size(), 0}}
                                            : QList<KNRange>{end.first()});
        return expanded;
    }

private:
    /// A stop without a text has that of another one with its number.
    void readDefaults()
    {
        for (qsizetype at = m_snippet.indexOf(u'$'); at >= 0; at = m_snippet.indexOf(u'$', at)) {
            const auto stop = stopAt(m_snippet, at);
            if (stop && stop->text && !m_defaults.contains(stop->number))
                m_defaults.insert(stop->number, *stop->text);
            at = stop ? stop->end : at + (m_snippet.mid(at, 2) == QStringLiteral("$$") ? 2 : 1);
        }
    }

    qsizetype readAt(qsizetype at)
    {
        const QChar character = m_snippet[at];
        if (character == u'\n') {
            m_text += m_lineEnd;
            return at + 1;
        }
        if (character == u'$') {
            if (const auto stop = stopAt(m_snippet, at)) {
                const QString text = m_defaults.value(stop->number);
                m_places[stop->number].append({m_text.size(), text.size()});
                m_text += text;
                return stop->end;
            }
            m_text += character;
            return at + (m_snippet.mid(at, 2) == QStringLiteral("$$") ? 2 : 1);
        }
        m_text += character;
        return at + 1;
    }

    const QString &m_snippet;
    const QString m_lineEnd;
    QMap<int, QString> m_defaults;
    QString m_text;
    QMap<int, QList<KNRange>> m_places;
};

} // namespace

KNExpandedSnippet KNExpandedSnippet::from(const QString &snippet, const QString &indentation,
                                          const QString &lineEnd)
{
    return SnippetReader(snippet, lineEnd + indentation).read();
}
