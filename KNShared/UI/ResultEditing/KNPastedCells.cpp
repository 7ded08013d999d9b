#include "UI/ResultEditing/KNPastedCells.h"

#include "Foundation/KNFormat.h"

#include <utility>

namespace {

/// Reads the cell in quotes that begins at `*position` and ends behind it; null, with the position unchanged,
/// if it has no end in front of a tab, a line end or the text's end.
QString quotedCell(const QString &text, qsizetype *position)
{
    QString cell = QStringLiteral("");
    for (qsizetype i = *position + 1; i < text.size(); ++i) {
        if (text[i] != u'"') {
            cell += text[i];
            continue;
        }
        const QChar next = i + 1 < text.size() ? text[i + 1] : QChar(u'\n');
        if (next == u'"') {
            cell += text[i++];
            continue;
        }
        if (next != u'\t' && next != u'\n' && next != u'\r')
            return {};
        *position = i + 1;
        return cell;
    }
    return {};
}

QString plainCell(const QString &text, qsizetype *position)
{
    const qsizetype begin = *position;
    while (*position < text.size() && text[*position] != u'\t' && text[*position] != u'\n' &&
           text[*position] != u'\r')
        ++*position;
    return text.mid(begin, *position - begin);
}

} // namespace

std::optional<QList<QStringList>> KNPastedCells::read(const QString &text, qsizetype most, QString *problem)
{
    problem->clear();
    QList<QStringList> rows;
    qsizetype count = 0;
    bool beginsRow = true;
    for (qsizetype position = 0; position < text.size();) {
        if (std::exchange(beginsRow, false))
            rows.append(QStringList());
        const QString quoted = text[position] == u'"' ? quotedCell(text, &position) : QString();
        rows.last().append(quoted.isNull() ? plainCell(text, &position) : quoted);
        if (++count > most) {
            *problem = KNFormat(tr("At most %ld cells can be pasted at once. Nothing was pasted."), most);
            return std::nullopt;
        }
        if (position >= text.size())
            break;
        if (text[position] == u'\t') {
            if (++position == text.size() || text[position] == u'\n' || text[position] == u'\r')
                rows.last().append(QString());
        }
        if (position < text.size() && (text[position] == u'\n' || text[position] == u'\r')) {
            position += text.mid(position, 2) == QLatin1String("\r\n") ? 2 : 1;
            beginsRow = true;
        }
    }
    if (rows.isEmpty()) {
        *problem = tr("The clipboard has no text.");
        return std::nullopt;
    }
    return rows;
}
