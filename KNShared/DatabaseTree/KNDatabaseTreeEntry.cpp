#include "DatabaseTree/KNDatabaseTreeEntry.h"

#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "Foundation/KNAssert.h"

#include <algorithm>

namespace {

/// "a.b, c"; null for an empty list.
QString listOf(const QList<QStringList> &names)
{
    QStringList paths;
    for (const QStringList &parts : names)
        paths.append(parts.join(QLatin1Char('.')));
    return paths.isEmpty() ? QString() : paths.join(QLatin1String(", "));
}

} // namespace

KNDatabaseTreeEntry::KNDatabaseTreeEntry() = default;
KNDatabaseTreeEntry::~KNDatabaseTreeEntry() = default;

void KNDatabaseTreeEntry::setDatabaseConnectionDetails(const VantorDBC *details)
{
    m_databaseConnectionDetails = details ? details->copy() : nullptr;
}

void KNDatabaseTreeEntry::adopt(KNDatabaseTreeEntry &child)
{
    child.m_parent = weak_from_this();
    child.m_delegate = m_delegate;
    child.m_databaseConnectionDetails = m_databaseConnectionDetails;
}

QString KNDatabaseTreeEntry::displayName() const
{
    const std::lock_guard lock(m_mutex);
    return m_displayName;
}

void KNDatabaseTreeEntry::setDisplayName(const QString &displayName)
{
    const std::lock_guard lock(m_mutex);
    m_displayName = displayName;
}

QString KNDatabaseTreeEntry::details() const
{
    const std::lock_guard lock(m_mutex);
    return m_details;
}

void KNDatabaseTreeEntry::setDetails(const QString &details)
{
    const std::lock_guard lock(m_mutex);
    m_details = details;
}

QString KNDatabaseTreeEntry::image() const
{
    const std::lock_guard lock(m_mutex);
    return m_image;
}

void KNDatabaseTreeEntry::setImage(const QString &image)
{
    const std::lock_guard lock(m_mutex);
    m_image = image;
}

KNDatabaseTreeEntry::Children KNDatabaseTreeEntry::childEntries() const
{
    const std::lock_guard lock(m_mutex);
    return m_children;
}

void KNDatabaseTreeEntry::setChildEntries(Children children)
{
    // The old children are destroyed outside of the lock: the list may be the last owner of many entries.
    const std::lock_guard lock(m_mutex);
    m_children.swap(children);
}

void KNDatabaseTreeEntry::setChildEntries(List children)
{
    setChildEntries(std::make_shared<const List>(std::move(children)));
}

bool KNDatabaseTreeEntry::loadEntriesAsync(bool)
{
    return false;
}

bool KNDatabaseTreeEntry::takeOut(const Ptr &child)
{
    const Children children = childEntries();
    if (!children)
        return false;
    const auto found = std::find(children->begin(), children->end(), child);
    if (found == children->end())
        return false;
    List rest(children->begin(), found);
    rest.insert(rest.end(), std::next(found), children->end());
    setChildEntries(std::move(rest));
    return true;
}

void KNDatabaseTreeEntry::removeChild(const Ptr &child)
{
    takeOut(child);
}

void KNDatabaseTreeEntry::removeChildOrFail(const Ptr &child, const char *message, const char *sourcePath)
{
    KNAssert(takeOut(child), message, sourcePath);
}

KNDatabaseTreeEntry::Ptr KNDatabaseTreeEntry::createErrorDetailsTreeEntry(const KNError &error)
{
    const auto entry = std::make_shared<KNDatabaseTreeErrorEntry>(error);
    adopt(*entry);
    return entry;
}

KNDatabaseTreeEntry::Ptr KNDatabaseTreeEntry::copyWithSearchResults(const QString &)
{
    return nullptr;
}

void KNDatabaseTreeEntry::tellBeginLoading()
{
    if (const auto watching = delegate())
        watching->databaseTreeEntryDidBeginLoading(shared_from_this());
}

void KNDatabaseTreeEntry::tellFinishLoading()
{
    if (const auto watching = delegate())
        watching->databaseTreeEntryDidFinishLoading(shared_from_this());
}

void KNDatabaseTreeEntry::tellFailLoading(const KNError &error)
{
    if (const auto watching = delegate())
        watching->databaseTreeEntryDidFailLoading(shared_from_this(), error);
}

KNMenu KNDatabaseTreeEntry::menu()
{
    return {};
}

KNMenu KNDatabaseTreeEntry::additionalMenu()
{
    return {};
}

KNObjectPropertiesLoader KNDatabaseTreeEntry::propertiesLoader() const
{
    return nullptr;
}

KNMenu KNDatabaseTreeEntry::contextMenu()
{
    KNMenu whole = menu();
    whole.extend(additionalMenu());
    std::vector<KNMenuItem> common;
    if (const QString name = insertedText(); !name.isEmpty())
        common.push_back(actionItem("Copy name", "copyName:", name));
    if (propertiesLoader())
        common.push_back(actionItem("Properties", "showProperties:", shared_from_this()));
    whole.addGroup(common);
    if (whole.title.isEmpty())
        whole.title = QStringLiteral("Root");
    return whole;
}

QString KNDatabaseTreeEntry::dragDropString() const
{
    return listOf(dragNames());
}

QString KNDatabaseTreeEntry::insertedText() const
{
    QList<QStringList> names = dragNames();
    if (names.isEmpty() || !m_databaseConnectionDetails)
        return dragDropString();
    for (QStringList &parts : names) {
        for (QString &part : parts)
            part = part.isEmpty() ? part : m_databaseConnectionDetails->quotedName(part);
    }
    return listOf(names);
}

std::shared_ptr<DatabaseTreeDragDropEntry> KNDatabaseTreeEntry::dragDropEntry() const
{
    return nullptr;
}

std::shared_ptr<KNDatabaseTreeContextHelper> KNDatabaseTreeEntry::contextHelper() const
{
    const Ptr above = parent();
    return above ? above->contextHelper() : nullptr;
}

KNMenuItem KNDatabaseTreeEntry::actionItem(const char *title, const char *action,
                                           KNMenuRepresentedObject representedObject) const
{
    KNMenuItem item;
    item.title = QString::fromUtf8(title);
    item.action = QString::fromUtf8(action);
    item.target = contextHelper();
    item.representedObject = std::move(representedObject);
    return item;
}

KNMenuItem KNDatabaseTreeEntry::newQueryMenuItem()
{
    return actionItem("New query", "newQuery:", shared_from_this());
}

KNMenuItem KNDatabaseTreeEntry::importMenuItem()
{
    return actionItem("Import", "importIntoDatabase:", shared_from_this());
}

KNMenuItem KNDatabaseTreeEntry::refreshMenuItem()
{
    return actionItem("Refresh", "refreshDatabaseTreeItem:", shared_from_this());
}

KNMenuItem
KNDatabaseTreeEntry::createScriptToOptionsMenu(const char *title,
                                               const std::shared_ptr<KNQueryLoader> &queryLoader) const
{
    const QString text = QString::fromUtf8(title);
    return KNMenuItem::withSubmenu(text,
                                   {text,
                                    {actionItem("New query tab", "addQueryTabWithQueryLoader:", queryLoader),
                                     actionItem("File", "saveQueryWithQueryLoader:", queryLoader),
                                     actionItem("Clipboard", "copyQueryWithQueryLoader:", queryLoader)}});
}

KNMenuItem KNDatabaseTreeEntry::scriptAsMenuItem(
    const std::vector<std::pair<const char *, std::shared_ptr<KNQueryLoader>>> &scripts) const
{
    KNMenu menu{QStringLiteral("Script as"), {}};
    for (const auto &[title, queryLoader] : scripts)
        menu.items.push_back(createScriptToOptionsMenu(title, queryLoader));
    return KNMenuItem::withSubmenu(menu.title, menu);
}
