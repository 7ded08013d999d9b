#include "Desktop/Preferences/ShortcutList.h"

#include "Foundation/KNNotificationCenter.h"
#include "Foundation/KNUserDefaults.h"

#include <algorithm>

namespace {

QString keyOf(const QString &name)
{
    return QStringLiteral("Shortcut.") + name;
}

bool collide(const QKeySequence &a, const QKeySequence &b)
{
    return a.matches(b) != QKeySequence::NoMatch || b.matches(a) != QKeySequence::NoMatch;
}

bool uses(const ShortcutEntry &entry, const QKeySequence &keys)
{
    return std::any_of(entry.shortcuts.begin(), entry.shortcuts.end(),
                       [&](const QKeySequence &used) { return collide(used, keys); });
}

void take(ShortcutEntry &entry, const QKeySequence &keys)
{
    entry.shortcuts.removeIf([&](const QKeySequence &used) { return collide(used, keys); });
}

} // namespace

const QString ShortcutList::ChangedNotificationName = QStringLiteral("ShortcutsChangedNotification");

QList<QKeySequence> ShortcutList::stored(const QString &name, const QList<QKeySequence> &defaults)
{
    const QVariant value = KNUserDefaults::standardUserDefaults()->objectForKey(keyOf(name));
    if (!value.isValid())
        return defaults;
    QList<QKeySequence> shortcuts;
    const QStringList texts = value.toStringList();
    for (const QString &text : texts) {
        if (const QKeySequence keys(text, QKeySequence::PortableText); !keys.isEmpty())
            shortcuts.append(keys);
    }
    return shortcuts;
}

ShortcutList::ShortcutList(QList<ShortcutEntry> entries)
    : m_entries(std::move(entries))
{
}

qsizetype ShortcutList::conflict(const QKeySequence &keys, qsizetype except) const
{
    for (qsizetype i = 0; i < m_entries.size() && !keys.isEmpty(); ++i) {
        if (i != except && uses(m_entries[i], keys))
            return i;
    }
    return -1;
}

bool ShortcutList::add(qsizetype entry, const QKeySequence &keys)
{
    const auto refuses = [&](const ShortcutEntry &other) { return other.isFixed && uses(other, keys); };
    if (keys.isEmpty() || m_entries[entry].isFixed ||
        std::any_of(m_entries.cbegin(), m_entries.cend(), refuses))
        return false;
    for (ShortcutEntry &other : m_entries)
        take(other, keys);
    m_entries[entry].shortcuts.append(keys);
    return true;
}

void ShortcutList::clear(qsizetype entry)
{
    if (!m_entries[entry].isFixed)
        m_entries[entry].shortcuts.clear();
}

void ShortcutList::restoreDefaults()
{
    for (ShortcutEntry &entry : m_entries)
        entry.shortcuts = entry.defaults;
}

void ShortcutList::save() const
{
    KNUserDefaults &defaults = *KNUserDefaults::standardUserDefaults();
    for (const ShortcutEntry &entry : m_entries) {
        if (entry.isFixed)
            continue;
        QStringList texts;
        for (const QKeySequence &keys : entry.shortcuts)
            texts.append(keys.toString(QKeySequence::PortableText));
        if (entry.shortcuts == entry.defaults)
            defaults.removeObject(keyOf(entry.name));
        else
            defaults.setObject(keyOf(entry.name), texts.isEmpty() ? QStringList{QString()} : texts);
    }
    defaults.synchronize();
    KNNotificationCenter::defaultCenter()->post(ChangedNotificationName);
}
