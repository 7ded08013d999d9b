#include "CommandLine/TreePath.h"

#include "Foundation/KNFormat.h"

namespace {

struct Escape
{
    char16_t meant;
    char16_t written;
};

constexpr Escape Escapes[] = {{u'/', u'/'}, {u'\\', u'\\'}, {u'\n', u'n'}, {u'\r', u'r'}, {u'\t', u't'}};

} // namespace

std::optional<QStringList> TreePath::names(const QString &path, KNError *error)
{
    QStringList names;
    QString name;
    bool isInName = false;
    const auto endName = [&] {
        if (isInName)
            names.append(name);
        name.clear();
        isInName = false;
    };
    for (qsizetype at = 0; at < path.size(); ++at) {
        if (path[at] == QLatin1Char('/')) {
            endName();
            continue;
        }
        isInName = true;
        if (path[at] != QLatin1Char('\\')) {
            name.append(path[at]);
            continue;
        }
        ++at;
        const auto *const escape = std::find_if(std::begin(Escapes), std::end(Escapes), [&](Escape known) {
            return at < path.size() && path[at] == known.written;
        });
        if (escape == std::end(Escapes)) {
            *error = KNError(QStringLiteral("com.quorvex.vantor.cli"), 0,
                             KNFormat("In \"%@\" a backslash stands before none of / \\ n r t.", path));
            return std::nullopt;
        }
        name.append(QChar(escape->meant));
    }
    endName();
    return names;
}

QString TreePath::escaped(const QString &name)
{
    QString path;
    for (const QChar character : name) {
        const auto *const escape = std::find_if(std::begin(Escapes), std::end(Escapes),
                                                [&](Escape known) { return character == known.meant; });
        if (escape == std::end(Escapes))
            path.append(character);
        else
            path.append(QLatin1Char('\\')).append(QChar(escape->written));
    }
    return path;
}
