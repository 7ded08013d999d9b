#include "CommandLine/ErrorExcerpt.h"

#include "CommandLine/Terminal.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNTerminalText.h"

#include <QStringList>

namespace {

/// As wide as the text on a terminal; tabs stay, so that what follows them lines up.
QString blanksFor(const QString &text)
{
    QString blanks;
    const auto parts = text.split(QLatin1Char('\t'));
    for (const QString &part : parts)
        blanks += QString(KNTerminalText::displayWidth(part), QLatin1Char(' ')) + QLatin1Char('\t');
    blanks.chop(1);
    return blanks;
}

} // namespace

QString errorExcerpt(const QString &text, const KNRange &range)
{
    if (!range.isFound())
        return QString();
    const QStringView before = QStringView(text).left(range.location);
    const qsizetype begin = before.lastIndexOf(QLatin1Char('\n')) + 1;
    const qsizetype lineFeed = text.indexOf(QLatin1Char('\n'), range.location);
    const QString line = text.mid(begin, (lineFeed < 0 ? text.size() : lineFeed) - begin).trimmed();
    const qsizetype indent = text.indexOf(line, begin) - begin;

    const QString head = KNFormat("%ld: ", before.count(QLatin1Char('\n')) + 1);
    const QString lead = KNTerminalText::escaped(line.left(range.location - begin - indent));
    const qsizetype width =
        KNTerminalText::displayWidth(KNTerminalText::escaped(text.mid(range.location, range.length)));
    return KNFormat("%@%@\n%@%@%@", head, line, QString(head.size(), QLatin1Char(' ')), blanksFor(lead),
                    QString(width, QLatin1Char('^')));
}
