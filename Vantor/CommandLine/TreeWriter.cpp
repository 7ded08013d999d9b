#include "CommandLine/TreeWriter.h"

#include "CommandLine/Terminal.h"
#include "CommandLine/TreePath.h"
#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"

#include <QJsonArray>
#include <QJsonDocument>

void TreeWriter::write(const TreeLoader::Entry &entry)
{
    if (m_options.asJson)
        Terminal::printText(QJsonDocument(json(entry, 0)).toJson());
    else
        writeLines(entry, 0);
}

bool TreeWriter::isError(const TreeLoader::Entry &entry)
{
    const bool isError = dynamic_cast<const KNDatabaseTreeErrorEntry *>(entry.get()) != nullptr;
    m_hadErrors = m_hadErrors || isError;
    return isError;
}

void TreeWriter::writeLines(const TreeLoader::Entry &entry, int level)
{
    // Loaded first: loading the root changes its details.
    const auto children = level < m_options.depth ? m_loader.children(entry) : KNDatabaseTreeEntry::List();
    QString line(level * 2, QLatin1Char(' '));
    if (isError(entry))
        line += QStringLiteral("! ");
    line += TreePath::escaped(entry->displayName());
    if (m_options.showDetails && !entry->details().isEmpty())
        line += QStringLiteral("  ") + TreePath::escaped(entry->details());
    Terminal::printLine(line);
    for (const TreeLoader::Entry &child : children)
        writeLines(child, level + 1);
}

QJsonObject TreeWriter::json(const TreeLoader::Entry &entry, int level)
{
    const auto children = level < m_options.depth ? m_loader.children(entry) : KNDatabaseTreeEntry::List();
    QJsonObject object{{QStringLiteral("name"), entry->displayName()},
                       {QStringLiteral("image"), entry->image()},
                       {QStringLiteral("canHaveChildren"), entry->canHaveChildren()}};
    if (isError(entry))
        object.insert(QStringLiteral("isError"), true);
    if (m_options.showDetails && !entry->details().isNull())
        object.insert(QStringLiteral("details"), entry->details());
    if (level >= m_options.depth || !entry->canHaveChildren())
        return object;
    QJsonArray array;
    for (const TreeLoader::Entry &child : children)
        array.append(json(child, level + 1));
    object.insert(QStringLiteral("children"), array);
    return object;
}
