#pragma once

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"
#include "Support/PrintQt.h"
#include "Support/RecordingTreeDelegate.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <functional>

/// What the tests of trees share: the test's thread is the main thread, whose queue is served while a load is
/// waited for.
namespace TreeTesting {

using Ptr = KNDatabaseTreeEntry::Ptr;

/// Serves the main queue until the condition holds; false after a minute.
inline bool waitFor(const std::function<bool()> &condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition() && std::chrono::steady_clock::now() < end)
        KNDispatch::pumpMainQueue(2);
    return condition();
}

/// Serves the main queue until nothing runs any more.
inline bool settle()
{
    // What runs may still queue something: only when both were idle behind one another it is over.
    return waitFor([] { return KNDispatch::waitUntilIdle(2) && !KNDispatch::pumpMainQueue(0); });
}

/// Loads the children and waits for them; what loadEntriesAsync() returned.
inline bool load(const Ptr &entry, bool force = false)
{
    const bool answer = entry->loadEntriesAsync(force);
    EXPECT_TRUE(settle());
    EXPECT_FALSE(entry->isLoadingAsync());
    return answer;
}

/// The display names of the children; "(nil)" when they were never loaded, "(none)" for no entry.
inline QStringList names(const Ptr &entry)
{
    if (!entry)
        return {QStringLiteral("(none)")};
    const auto children = entry->childEntries();
    if (!children)
        return {QStringLiteral("(nil)")};
    QStringList texts;
    for (const Ptr &child : *children)
        texts.append(child->displayName());
    return texts;
}

/// Goes down by display names, loading on the way; null, and a failure, when there is none.
inline Ptr find(Ptr entry, const QStringList &path)
{
    for (const QString &name : path) {
        if (!entry->childEntries())
            load(entry);
        Ptr found;
        if (const auto children = entry->childEntries()) {
            for (const Ptr &child : *children) {
                if (!found && child->displayName() == name)
                    found = child;
            }
        }
        if (!found) {
            ADD_FAILURE() << "There is no " << name.toStdString() << " among "
                          << names(entry).join(QStringLiteral(", ")).toStdString();
            return nullptr;
        }
        entry = found;
    }
    return entry;
}

/// The titles of a menu's items; separators are "-".
inline QStringList titles(const KNMenu &menu)
{
    QStringList texts;
    for (const KNMenuItem &item : menu.items)
        texts.append(item.isSeparator ? QStringLiteral("-") : item.title);
    return texts;
}

/// The item with this title, wherever in the menu; a failure when there is none.
inline KNMenuItem item(const KNMenu &menu, const QStringList &path)
{
    for (const KNMenuItem &candidate : menu.items) {
        if (candidate.title != path.first())
            continue;
        if (path.size() == 1)
            return candidate;
        return item(*candidate.submenu, path.mid(1));
    }
    ADD_FAILURE() << "There is no " << path.join(QStringLiteral("/")).toStdString();
    return {};
}

inline QString text(const KNMenuItem &menuItem)
{
    const QString *const value = std::get_if<QString>(&menuItem.representedObject);
    return value ? *value : QString();
}

inline Ptr entry(const KNMenuItem &menuItem)
{
    const Ptr *const value = std::get_if<Ptr>(&menuItem.representedObject);
    return value ? *value : nullptr;
}

inline QStringList list(std::initializer_list<const char *> texts)
{
    QStringList strings;
    for (const char *utf8 : texts)
        strings.append(QString::fromUtf8(utf8));
    return strings;
}

} // namespace TreeTesting
