#pragma once

#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "UI/DatabaseTree/KNDatabaseTreeView.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QMenu;

/// The object explorer: the tree of one connection and a search field for all databases.
class KNSHAREDUI_EXPORT KNDatabaseTreeViewController : public QWidget
{
    Q_OBJECT

public:
    using Entry = KNDatabaseTreeModel::Entry;
    using Root = std::shared_ptr<DatabaseTreeEntryServerRoot>;

    explicit KNDatabaseTreeViewController(QWidget *parent = nullptr);

    /// Shows this tree and loads its first level; null for none.
    void setRoot(const Root &root);
    const Root &root() const { return m_root; }

    Entry currentlySelectedDatabaseTreeEntry() const { return m_view->currentEntry(); }
    void deselectAll();
    /// Reloads the entry's children, or the loaded lists below fixed ones; for a leaf those of its parent.
    void refreshDatabaseTreeItem(const Entry &entry);
    /// Reloads the selected entry, or everything if none is selected.
    void refreshSelected();
    void focusSearchField();
    void focusTree();

    KNDatabaseTreeView *view() const { return m_view; }
    QLineEdit *searchField() const { return m_searchField; }
    /// The text below the search field that explains an empty tree; null if hidden.
    QString notice() const;

Q_SIGNALS:
    /// The user has entered the password of a login that was refused, and it has succeeded.
    void passwordEntered(const QString &password);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void tryAgain(const Entry &errorEntry);
    void askForPassword(const Entry &errorEntry);
    void search();
    void loadSearchEntries();
    void showSearchResults();
    void showWholeTree();
    void searchOnceLoaded();
    void showNotice(const QString &text);
    void showMenu(const Entry &entry, const QPoint &globalPosition);
    void addFilterItems(QMenu &menu, const Entry &entry);
    void askForFilter(const Entry &entry);
    void setFilter(const Entry &entry, const QString &text);

    enum class Feed { Outdated, Loading, Loaded, Refused };

    QLineEdit *const m_searchField;
    QLabel *const m_notice;
    KNDatabaseTreeView *const m_view;
    KNDatabaseTreeModel *const m_model;
    Root m_root;
    QTimer m_typing;
    Feed m_feed = Feed::Outdated; ///< the objects that the search uses
    KNError m_feedError;          ///< why the feed is incomplete
    bool m_waitsForTree = false;  ///< a search was entered before the root was loaded
    quint64 m_generation = 0;     ///< of the root for which the feed is loaded
};
