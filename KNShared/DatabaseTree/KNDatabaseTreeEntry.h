#pragma once

#include "Database/VantorDBC.h"
#include "DatabaseTree/DatabaseTreeDragDropEntry.h"
#include "DatabaseTree/KNDatabaseTreeEntryDelegate.h"
#include "DatabaseTree/KNMenu.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <atomic>
#include <mutex>
#include <vector>

/// A row of the object tree. This class is a plain leaf; what has children overrides loadEntriesAsync(). Held
/// by std::shared_ptr: children strongly, parent and delegate weakly.
///
/// Parent, delegate and settings are set by whoever makes the entry, before others see it. Names, details,
/// children and the busy state may be read on any thread at any time.
class KNSHARED_EXPORT KNDatabaseTreeEntry : public std::enable_shared_from_this<KNDatabaseTreeEntry>
{
public:
    using Ptr = std::shared_ptr<KNDatabaseTreeEntry>;
    using List = std::vector<Ptr>;
    /// An immutable array; null when it was never loaded.
    using Children = std::shared_ptr<const List>;
    using Settings = std::shared_ptr<const VantorDBC>;

    KNDatabaseTreeEntry();
    virtual ~KNDatabaseTreeEntry();
    KNDatabaseTreeEntry(const KNDatabaseTreeEntry &) = delete;
    KNDatabaseTreeEntry &operator=(const KNDatabaseTreeEntry &) = delete;

    /// Null for a root, and when the parent is gone.
    Ptr parent() const { return m_parent.lock(); }
    void setParent(const Ptr &parent) { m_parent = parent; }
    std::shared_ptr<KNDatabaseTreeEntryDelegate> delegate() const { return m_delegate.lock(); }
    void setDelegate(const std::weak_ptr<KNDatabaseTreeEntryDelegate> &delegate) { m_delegate = delegate; }
    /// Nobody changes the settings of an entry, so entries share them.
    const Settings &databaseConnectionDetails() const { return m_databaseConnectionDetails; }
    /// Takes a copy.
    virtual void setDatabaseConnectionDetails(const VantorDBC *details);
    /// Makes this the parent of the entry, which also gets the delegate and the settings.
    void adopt(KNDatabaseTreeEntry &child);

    /// The text of the row.
    virtual QString displayName() const;
    void setDisplayName(const QString &displayName);
    /// The secondary text of the row; null for none.
    QString details() const;
    void setDetails(const QString &details);
    /// The name of the row's icon.
    virtual QString image() const;
    void setImage(const QString &image);
    /// In points.
    virtual int tableCellHeight() const { return 23; }
    /// The kind of row in the view.
    virtual QString tableCellIdentifier() const { return QStringLiteral("DataCell"); }

    Children childEntries() const;
    virtual bool canHaveChildren() const { return m_canHaveChildren; }
    void setCanHaveChildren(bool canHaveChildren) { m_canHaveChildren = canHaveChildren; }
    /// Starts loading the children, again when `force` is set. Each class says what it returns; whether a
    /// load is under way, isLoadingAsync() tells. Any thread; never waits.
    virtual bool loadEntriesAsync(bool force);
    bool isLoadingAsync() const { return m_isLoadingAsync; }
    /// Takes one child out after its object was dropped. Who is no child is ignored here.
    virtual void removeChild(const Ptr &child);
    /// A leaf that shows an error in place of this entry's children.
    Ptr createErrorDetailsTreeEntry(const KNError &error);

    /// A copy that shows only what matches the text, below it; null when nothing does, or when the entry is
    /// not searched.
    virtual Ptr copyWithSearchResults(const QString &text);

    /// The context menu of the row; one without items when it has none. Asks no server. On the UI thread, as
    /// everything below.
    virtual KNMenu menu();
    /// What is put into an editor into which the row is dragged; null for nothing.
    virtual QString dragDropString() const;
    /// Null for nothing.
    virtual std::shared_ptr<DatabaseTreeDragDropEntry> dragDropEntry() const;
    virtual void onDoubleClicked() {}
    virtual void cmdDown() {}
    virtual void cmdRight() {}
    /// Carries out the actions of the tree: that of the root. Null when there is none.
    virtual std::shared_ptr<KNDatabaseTreeContextHelper> contextHelper() const;

protected:
    /// A new child, adopted.
    template <typename Entry, typename... Arguments>
    std::shared_ptr<Entry> make(Arguments &&...arguments)
    {
        auto entry = std::make_shared<Entry>(std::forward<Arguments>(arguments)...);
        adopt(*entry);
        return entry;
    }

    void setChildEntries(Children children);
    void setChildEntries(List children);
    void setIsLoadingAsync(bool isLoading) { m_isLoadingAsync = isLoading; }
    void tellBeginLoading();
    void tellFinishLoading();
    /// removeChild() of those classes for which it is a programming error when there is no such child.
    void removeChildOrFail(const Ptr &child, const char *message, const char *sourcePath);

    /// \name Parts of menus
    /// @{
    KNMenuItem actionItem(const char *title, const char *action,
                          KNMenuRepresentedObject representedObject = {}) const;
    KNMenuItem newQueryMenuItem();
    KNMenuItem importMenuItem();
    KNMenuItem refreshMenuItem();
    /// An item whose submenu sends the script to a new tab, a file or the clipboard. Without a loader all of
    /// it is disabled.
    KNMenuItem createScriptToOptionsMenu(const char *title,
                                         const std::shared_ptr<KNQueryLoader> &queryLoader) const;
    /// "Script as", with one such item for each script.
    KNMenuItem scriptAsMenuItem(
        const std::vector<std::pair<const char *, std::shared_ptr<KNQueryLoader>>> &scripts) const;
    /// @}

private:
    bool takeOut(const Ptr &child);

    std::weak_ptr<KNDatabaseTreeEntry> m_parent;
    std::weak_ptr<KNDatabaseTreeEntryDelegate> m_delegate;
    Settings m_databaseConnectionDetails;
    mutable std::mutex m_mutex; ///< guards the next four
    QString m_displayName;
    QString m_details;
    QString m_image;
    Children m_children;
    std::atomic<bool> m_isLoadingAsync = false;
    bool m_canHaveChildren = false;
};
