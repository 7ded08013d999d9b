#pragma once

#include "Database/VantorDBC.h"
#include "DatabaseTree/DatabaseTreeDragDropEntry.h"
#include "DatabaseTree/KNDatabaseTreeEntryDelegate.h"
#include "DatabaseTree/KNMenu.h"
#include "DatabaseTree/KNObjectProperties.h"
#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QStringList>

#include <atomic>
#include <mutex>
#include <vector>

/// A row of the object tree. This class is a leaf; entries with children override loadEntriesAsync(). Held by
/// std::shared_ptr: an entry owns its children and refers weakly to its parent and delegate.
///
/// The creator sets parent, delegate and settings before other threads see the entry. Names, details,
/// children and the busy state may be read on any thread at any time.
class KNSHARED_EXPORT KNDatabaseTreeEntry : public std::enable_shared_from_this<KNDatabaseTreeEntry>
{
public:
    using Ptr = std::shared_ptr<KNDatabaseTreeEntry>;
    using List = std::vector<Ptr>;
    /// An immutable list; null before the first load.
    using Children = std::shared_ptr<const List>;
    using Settings = std::shared_ptr<const VantorDBC>;

    KNDatabaseTreeEntry();
    virtual ~KNDatabaseTreeEntry();
    KNDatabaseTreeEntry(const KNDatabaseTreeEntry &) = delete;
    KNDatabaseTreeEntry &operator=(const KNDatabaseTreeEntry &) = delete;

    /// Null for a root, and after the parent was destroyed.
    Ptr parent() const { return m_parent.lock(); }
    void setParent(const Ptr &parent) { m_parent = parent; }
    std::shared_ptr<KNDatabaseTreeEntryDelegate> delegate() const { return m_delegate.lock(); }
    void setDelegate(const std::weak_ptr<KNDatabaseTreeEntryDelegate> &delegate) { m_delegate = delegate; }
    /// The settings are never modified, so entries share them.
    const Settings &databaseConnectionDetails() const { return m_databaseConnectionDetails; }
    /// Copies the settings.
    virtual void setDatabaseConnectionDetails(const VantorDBC *details);
    /// Makes this the parent of `child` and passes it the delegate and the settings.
    void adopt(KNDatabaseTreeEntry &child);

    /// The text of the row.
    virtual QString displayName() const;
    void setDisplayName(const QString &displayName);
    /// The secondary text of the row; null for none.
    QString details() const;
    void setDetails(const QString &details);
    /// The name of the icon of this kind of row.
    virtual QString image() const;
    void setImage(const QString &image);
    /// The name of the icon that the row shows, image() unless a kind has several.
    virtual QString iconName() const { return image(); }
    /// Whether the row is less important than others and drawn in a dimmed colour.
    virtual bool isDimmed() const { return false; }
    /// Height in points.
    virtual int tableCellHeight() const { return 23; }
    /// The row type in the view.
    virtual QString tableCellIdentifier() const { return QStringLiteral("DataCell"); }

    Children childEntries() const;
    virtual bool canHaveChildren() const { return m_canHaveChildren; }
    void setCanHaveChildren(bool canHaveChildren) { m_canHaveChildren = canHaveChildren; }
    /// Starts loading the children, or reloads them if `force` is set. The return value depends on the class;
    /// isLoadingAsync() reports whether a load is in progress. Any thread; never blocks.
    virtual bool loadEntriesAsync(bool force);
    bool isLoadingAsync() const { return m_isLoadingAsync; }
    /// Removes one child after its object was dropped. This implementation ignores entries that are not
    /// children.
    virtual void removeChild(const Ptr &child);
    /// Returns a leaf that shows an error instead of this entry's children.
    Ptr createErrorDetailsTreeEntry(const KNError &error);

    /// Returns a copy of the entry and its matching descendants; null if nothing matches or the entry is not
    /// searchable.
    virtual Ptr copyWithSearchResults(const QString &text);

    /// Returns the actions of this class of rows, without items if it has none. Does not access the server.
    /// On the UI thread, as are all functions below.
    virtual KNMenu menu();
    /// Returns the row's context menu: menu(), what additionalMenu() adds to it, then "Copy name" if the row
    /// has a drag text and "Properties" if it has a loader of properties.
    KNMenu contextMenu();
    /// Returns a function that reads the object's properties; null if it has none. The function may outlive
    /// the entry.
    virtual KNObjectPropertiesLoader propertiesLoader() const;
    /// The names of the objects that a drag inserts, each as its parts without quotes; none by default.
    virtual QList<QStringList> dragNames() const { return {}; }
    /// The text of a drag, with names as they are shown: dragNames() as a list by default. Null for nothing.
    virtual QString dragDropString() const;
    /// The text inserted when the row is dragged into an editor: dragNames() with quotes where the server's
    /// language requires them, otherwise dragDropString(). Null for nothing.
    QString insertedText() const;
    /// The data of a drag; null for nothing.
    virtual std::shared_ptr<DatabaseTreeDragDropEntry> dragDropEntry() const;
    virtual void onDoubleClicked() {}
    virtual void cmdDown() {}
    virtual void cmdRight() {}
    /// The root's helper that performs the tree's actions. Null if there is none.
    virtual std::shared_ptr<KNDatabaseTreeContextHelper> contextHelper() const;

protected:
    /// Creates a child and adopts it.
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
    void tellFailLoading(const KNError &error);
    /// Implements removeChild() for classes where a missing child is a programming error.
    void removeChildOrFail(const Ptr &child, const char *message, const char *sourcePath);

    /// Items that extend menu(); submenus are merged by their titles.
    virtual KNMenu additionalMenu();

    /// \name Parts of menus
    /// @{
    KNMenuItem actionItem(const char *title, const char *action,
                          KNMenuRepresentedObject representedObject = {}) const;
    KNMenuItem newQueryMenuItem();
    KNMenuItem importMenuItem();
    KNMenuItem refreshMenuItem();
    /// Creates an item whose submenu sends the script to a new tab, a file or the clipboard. Without a loader
    /// all of its items are disabled.
    KNMenuItem createScriptToOptionsMenu(const char *title,
                                         const std::shared_ptr<KNQueryLoader> &queryLoader) const;
    /// Creates "Script as" with one createScriptToOptionsMenu() item per script.
    KNMenuItem scriptAsMenuItem(
        const std::vector<std::pair<const char *, std::shared_ptr<KNQueryLoader>>> &scripts) const;
    /// @}

private:
    bool takeOut(const Ptr &child);

    std::weak_ptr<KNDatabaseTreeEntry> m_parent;
    std::weak_ptr<KNDatabaseTreeEntryDelegate> m_delegate;
    Settings m_databaseConnectionDetails;
    mutable std::mutex m_mutex; ///< guards the next four members
    QString m_displayName;
    QString m_details;
    QString m_image;
    Children m_children;
    std::atomic<bool> m_isLoadingAsync = false;
    bool m_canHaveChildren = false;
};
