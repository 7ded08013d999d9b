#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>

/// The shortcuts of one action.
struct ShortcutEntry
{
    QString name;  ///< of the action, such as "run"
    QString group; ///< the title of its menu
    QString title;
    QList<QKeySequence> defaults;
    QList<QKeySequence> shortcuts;
    bool isFixed = false; ///< the focused widget handles it; it cannot be changed
};

/// The shortcuts of a window's actions while the user edits them. Only those that differ from the defaults
/// are stored. On the UI thread.
class ShortcutList
{
public:
    /// Posted at the default notification centre after save().
    static const QString ChangedNotificationName;

    /// The user's shortcuts of an action, or the defaults.
    static QList<QKeySequence> stored(const QString &name, const QList<QKeySequence> &defaults);

    explicit ShortcutList(QList<ShortcutEntry> entries);

    const QList<ShortcutEntry> &entries() const { return m_entries; }
    /// The number of the other entry that uses these keys, or keys that begin or continue them; -1 if there
    /// is none.
    qsizetype conflict(const QKeySequence &keys, qsizetype except) const;
    /// Adds a shortcut to an entry and takes it from the other ones. False without a change if the entry or
    /// one that uses the keys is fixed.
    bool add(qsizetype entry, const QKeySequence &keys);
    void clear(qsizetype entry);
    void restoreDefaults();
    void save() const;

private:
    QList<ShortcutEntry> m_entries;
};
