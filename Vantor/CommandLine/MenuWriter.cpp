#include "CommandLine/MenuWriter.h"

#include "CommandLine/Terminal.h"
#include "CommandLine/TreePath.h"
#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Foundation/KNFormat.h"

namespace {

constexpr qsizetype LongestText = 60;

/// "entry Orders", "text SELECT ...", "script"; null for nothing.
QString describe(const KNMenuRepresentedObject &object)
{
    if (const auto *text = std::get_if<QString>(&object)) {
        if (text->isEmpty())
            return QString();
        const QString line = TreePath::escaped(*text);
        if (line.size() > LongestText)
            return KNFormat("text %@...", line.left(LongestText));
        return QLatin1String("text \"") + line + QLatin1Char('"');
    }
    if (const auto *entry = std::get_if<std::shared_ptr<KNDatabaseTreeEntry>>(&object))
        return *entry ? QLatin1String("entry ") + TreePath::escaped((*entry)->displayName()) : QString();
    if (const auto *script = std::get_if<std::shared_ptr<KNQueryLoader>>(&object))
        return *script ? QStringLiteral("script") : QStringLiteral("no script");
    return QString();
}

void writeItem(const KNMenuItem &item, int level);

void writeItems(const KNMenu &menu, int level)
{
    for (const KNMenuItem &item : menu.items)
        writeItem(item, level);
}

void writeItem(const KNMenuItem &item, int level)
{
    QStringList parts;
    if (item.isSeparator) {
        parts.append(QStringLiteral("---"));
    } else {
        parts.append(item.title);
        for (const QString &part : {item.action, describe(item.representedObject)}) {
            if (!part.isEmpty())
                parts.append(part);
        }
        if (item.isChecked)
            parts.append(QStringLiteral("(checked)"));
        if (!item.submenu && !item.isEnabled())
            parts.append(QStringLiteral("(disabled)"));
    }
    Terminal::printLine(QString(level * 2, QLatin1Char(' ')) + parts.join(QStringLiteral("  ")));
    if (item.submenu)
        writeItems(*item.submenu, level + 1);
}

} // namespace

void writeMenu(const KNMenu &menu)
{
    Terminal::printLine(menu.title);
    writeItems(menu, 1);
}
