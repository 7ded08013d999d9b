#include "Implementations/MSSQLObjectPath.h"

#include "Implementations/MSSQLQuoting.h"
#include "Implementations/MSSQLTokenizer.h"
#include "Implementations/MSSQLWordLists.h"

#include <algorithm>

namespace {

/// Regular identifiers consist of letters and digits of Unicode 3.2; @, $, # and _ may follow the first.
bool isRegularIdentifier(QStringView word)
{
    const auto isLetter = [](QChar c) { return c.isLetter() && c.unicodeVersion() <= QChar::Unicode_3_2; };
    const auto continues = [&](QChar c) {
        return isLetter(c) || c.category() == QChar::Number_DecimalDigit || c == QLatin1Char('_') ||
               c == QLatin1Char('@') || c == QLatin1Char('$') || c == QLatin1Char('#');
    };
    return !word.isEmpty() && (isLetter(word.front()) || word.front() == QLatin1Char('_')) &&
           std::all_of(word.begin(), word.end(), continues);
}

bool isPlainName(QStringView word)
{
    return isRegularIdentifier(word) &&
           !MSSQLWordLists::reservedWords().contains(word.toString(), Qt::CaseInsensitive);
}

/// Reads the part that begins at `position`, which ends behind it; null if it is empty or not closed.
QString enteredPart(const QString &path, qsizetype *position)
{
    const QChar open = *position < path.size() ? path[*position] : QChar();
    if (open != QLatin1Char('[') && open != QLatin1Char('"')) {
        const qsizetype dot = path.indexOf(QLatin1Char('.'), *position);
        const qsizetype end = dot < 0 ? path.size() : dot;
        const QString part = path.mid(*position, end - *position);
        *position = end;
        return part.isEmpty() ? QString() : part;
    }
    const QChar close = open == QLatin1Char('[') ? QLatin1Char(']') : open;
    QString part;
    for (qsizetype i = *position + 1; i < path.size(); ++i) {
        if (path[i] == close && (i + 1 >= path.size() || path[i + 1] != close)) {
            *position = i + 1;
            return part.isEmpty() ? QString() : part;
        }
        if (path[i] == close)
            ++i;
        part.append(path[i]);
    }
    return {};
}

bool readsAs(const SQLToken &token, const QString &name)
{
    if (token.kind == SQLTokenKind::Word)
        return token.text == name && isPlainName(token.text);
    return token.kind == SQLTokenKind::BracketedIdentifier && token.text == MSSQLObjectPath::bracketed(name);
}

} // namespace

QString MSSQLObjectPath::bracketed(QString name)
{
    name.replace(QLatin1Char(']'), QLatin1String("]]"));
    return QLatin1Char('[') + name + QLatin1Char(']');
}

QString MSSQLObjectPath::quoted(const QStringList &parts)
{
    QStringList names;
    for (const QString &part : parts)
        names.append(part.isEmpty() ? part : MSSQLQuoting::quotedName(part));
    return names.join(QLatin1Char('.'));
}

bool MSSQLObjectPath::reads(const QString &text, const QStringList &parts)
{
    SQLMetadataTokenizer tokenizer(text, MSSQLTokenizer::options());
    SQLToken token{};
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0 && !(tokenizer.next(&token) && token.text == QLatin1String(".")))
            return false;
        if (!parts[i].isEmpty() && !(tokenizer.next(&token) && readsAs(token, parts[i])))
            return false;
    }
    return !tokenizer.next(&token);
}

std::optional<QStringList> MSSQLObjectPath::entered(const QString &path)
{
    QStringList parts;
    for (qsizetype position = 0;; ++position) {
        const QString part = enteredPart(path, &position);
        if (part.isNull())
            return std::nullopt;
        parts.append(part);
        if (position >= path.size())
            return parts;
        if (path[position] != QLatin1Char('.'))
            return std::nullopt;
    }
}

QString MSSQLObjectPath::readable(const QStringList &parts)
{
    const QString text = parts.join(QLatin1Char('.'));
    return reads(text, parts) ? text : quoted(parts);
}

QString MSSQLObjectPath::ofTable(const QStringList &path)
{
    const QString escaped = MSSQLQuoting::escapeTablePaths(path);
    const QStringList parts = path.size() > 1 ? QStringList{path.first(), path.last()} : path;
    const bool isRead = reads(escaped, path.size() > 1 ? parts : path.value(0).split(QLatin1Char('.')));
    return isRead ? escaped : quoted(parts);
}
