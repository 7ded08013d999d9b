#pragma once

#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "UI/DatabaseTree/KNDatabaseTreeView.h"

#include <QWidget>

class QLabel;
class QLineEdit;

/// The object explorer: the tree of one connection with a field above it that searches all databases.
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
    /// Loads the entry's children anew; for one without children its parent's.
    void refreshDatabaseTreeItem(const Entry &entry);
    /// Loads the selected entry anew, everything when none is selected.
    void refreshSelected();
    void focusSearchField();
    void focusTree();

    KNDatabaseTreeView *view() const { return m_view; }
    QLineEdit *searchField() const { return m_searchField; }
    /// What the line below the search field says: why there is nothing to see; null when it is hidden.
    QString notice() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void search();
    void loadSearchEntries();
    void showSearchResults();
    void showWholeTree();
    void searchOnceLoaded();
    void showNotice(const QString &text);
    void showMenu(const Entry &entry, const QPoint &globalPosition);

    enum class Feed { Outdated, Loading, Loaded, Refused };

    QLineEdit *const m_searchField;
    QLabel *const m_notice;
    KNDatabaseTreeView *const m_view;
    KNDatabaseTreeModel *const m_model;
    Root m_root;
    QTimer m_typing;
    Feed m_feed = Feed::Outdated; ///< the objects that the search looks through
    KNError m_feedError;          ///< why the feed is incomplete
    bool m_waitsForTree = false;  ///< a search was typed before the root was loaded
    quint64 m_generation = 0;     ///< of the root that the feed is loaded for
};
