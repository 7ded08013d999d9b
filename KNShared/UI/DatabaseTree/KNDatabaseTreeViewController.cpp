#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"

#include "Database/VantorChangedPasswords.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Database/VantorLoginProblem.h"
#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/Menus/KNMenuView.h"

#include <QApplication>
#include <QBoxLayout>
#include <QClipboard>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>

namespace {

bool isErrorEntry(const KNDatabaseTreeEntry::Ptr &entry)
{
    return dynamic_cast<const KNDatabaseTreeErrorEntry *>(entry.get()) != nullptr;
}

/// Loads the entry's children again; if these are fixed, what has been loaded below them.
void loadAgain(const KNDatabaseTreeEntry::Ptr &entry)
{
    entry->loadEntriesAsync(true);
    if (!dynamic_cast<const KNDatabaseTreeFixedEntry *>(entry.get()))
        return;
    const auto children = entry->childEntries();
    for (const KNDatabaseTreeEntry::Ptr &child : *children) {
        if (child->childEntries() && child->canHaveChildren())
            loadAgain(child);
    }
}

} // namespace

KNDatabaseTreeViewController::KNDatabaseTreeViewController(QWidget *parent)
    : QWidget(parent)
    , m_searchField(new QLineEdit)
    , m_notice(new QLabel)
    , m_view(new KNDatabaseTreeView)
    , m_model(new KNDatabaseTreeModel(this))
{
    m_searchField->setPlaceholderText(tr("Search tables, views, procedures…"));
    m_searchField->setAccessibleName(tr("Search objects"));
    m_searchField->setClearButtonEnabled(true);
    m_searchField->installEventFilter(this);
    m_notice->setWordWrap(true);
    m_notice->setTextFormat(Qt::PlainText);
    m_notice->setMargin(6);
    m_notice->hide();
    m_view->setModel(m_model);

    auto *const fieldLayout = new QHBoxLayout;
    fieldLayout->setContentsMargins(6, 6, 6, 6);
    fieldLayout->addWidget(m_searchField);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(fieldLayout);
    layout->addWidget(m_notice);
    layout->addWidget(m_view, 1);

    constexpr int TypingPause = 150;
    m_typing.setSingleShot(true);
    m_typing.setInterval(TypingPause);
    connect(m_searchField, &QLineEdit::textChanged, &m_typing, qOverload<>(&QTimer::start));
    connect(&m_typing, &QTimer::timeout, this, &KNDatabaseTreeViewController::search);
    connect(m_model, &KNDatabaseTreeModel::busyChanged, this,
            &KNDatabaseTreeViewController::searchOnceLoaded);
    connect(m_model, &KNDatabaseTreeModel::loadFailed, this,
            [this](const KNError &error) { KNAlerts::shared().showError(this, error); });
    connect(m_view, &KNDatabaseTreeView::menuRequested, this, &KNDatabaseTreeViewController::showMenu);
}

void KNDatabaseTreeViewController::setRoot(const Root &root)
{
    ++m_generation;
    m_feed = Feed::Outdated;
    m_waitsForTree = false;
    m_root = root;
    m_searchField->clear();
    m_typing.stop();
    showNotice({});
    m_model->setRoot(root);
    if (!root)
        return;
    // Opening a window is a request to retry a refused login.
    if (const auto &details = root->databaseConnectionDetails())
        VantorDatabaseConnectionPool::sharedInstance()->forgetRefusals(*details);
    m_view->expand(m_model->index(0, 0));
}

void KNDatabaseTreeViewController::deselectAll()
{
    m_view->clearSelection();
    m_view->setCurrentIndex({});
}

void KNDatabaseTreeViewController::refreshDatabaseTreeItem(const Entry &entry)
{
    if (!entry)
        return;
    m_feed = Feed::Outdated;
    if (m_model->root() != m_root)
        search(); // search results are copies, which never load
    if (!entry->canHaveChildren())
        return refreshDatabaseTreeItem(entry->parent());
    loadAgain(entry);
}

void KNDatabaseTreeViewController::refreshSelected()
{
    const Entry selected = currentlySelectedDatabaseTreeEntry();
    if (isErrorEntry(selected))
        tryAgain(selected);
    else
        refreshDatabaseTreeItem(selected ? selected : m_root);
}

/// Loads again what has failed. After a refused login it asks for the password first: an attempt with a wrong
/// one counts against the account.
void KNDatabaseTreeViewController::tryAgain(const Entry &errorEntry)
{
    const KNError &error = static_cast<const KNDatabaseTreeErrorEntry &>(*errorEntry).error();
    if (VantorLoginProblemOf(error) == VantorLoginProblem::LoginRefused)
        askForPassword(errorEntry);
    else
        refreshDatabaseTreeItem(errorEntry);
}

void KNDatabaseTreeViewController::askForPassword(const Entry &errorEntry)
{
    const auto settings = errorEntry->databaseConnectionDetails();
    auto *const login = new KNLoginWindowController(*settings, true, this);
    login->beginSheet([self = QPointer(this), login, errorEntry, settings](int code) {
        if (!self || code != 1)
            return;
        VantorChangedPasswords::shared().add(*settings, login->details()->password());
        Q_EMIT self->passwordEntered(login->details()->password());
        self->refreshDatabaseTreeItem(errorEntry);
    });
}

void KNDatabaseTreeViewController::focusSearchField()
{
    m_searchField->setFocus(Qt::ShortcutFocusReason);
    m_searchField->selectAll();
}

void KNDatabaseTreeViewController::focusTree()
{
    m_view->setFocus(Qt::ShortcutFocusReason);
    if (!m_view->currentIndex().isValid())
        m_view->setCurrentIndex(m_model->index(0, 0));
}

QString KNDatabaseTreeViewController::notice() const
{
    return m_notice->isHidden() ? QString() : m_notice->text();
}

void KNDatabaseTreeViewController::showNotice(const QString &text)
{
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
}

void KNDatabaseTreeViewController::search()
{
    if (!m_root)
        return;
    m_waitsForTree = false;
    if (m_searchField->text().trimmed().isEmpty()) {
        showNotice({});
        if (m_feedError && m_feed != Feed::Loading)
            m_feed = Feed::Outdated; // a new search queries the server again
        showWholeTree();
        return;
    }
    if (!m_root->childEntries()) {
        m_waitsForTree = true;
        showNotice(tr("Loading the databases…"));
        return;
    }
    if (m_feed == Feed::Outdated)
        loadSearchEntries();
    else if (m_feed != Feed::Loading)
        showSearchResults();
}

void KNDatabaseTreeViewController::searchOnceLoaded()
{
    if (m_waitsForTree && m_root && m_root->childEntries())
        search();
}

/// Loads the objects of all databases at the first search, and again after a refresh.
void KNDatabaseTreeViewController::loadSearchEntries()
{
    m_feed = Feed::Loading;
    showNotice(tr("Loading the names of all objects…"));
    const QPointer self(this);
    KNDispatch::globalQueue([self, root = m_root, generation = m_generation] {
        KNError error;
        const bool isSearched = root->updateSearchEntries(&error);
        KNDispatch::mainQueue([self, generation, isSearched, error] {
            if (!self || self->m_generation != generation)
                return;
            self->m_feed = isSearched ? Feed::Loaded : Feed::Refused;
            self->m_feedError = error;
            self->search();
        });
    });
}

void KNDatabaseTreeViewController::showSearchResults()
{
    const QString text = m_searchField->text().trimmed();
    const Entry found = m_feed == Feed::Refused ? nullptr : m_root->copyWithSearchResults(text);
    if (!m_feedError)
        showNotice(found ? QString() : KNFormat(tr("No object's name contains \"%@\"."), text));
    else if (m_feed == Feed::Refused)
        showNotice(m_feedError.localizedDescription());
    else
        showNotice(KNFormat(found ? "The search is incomplete: %@" : "The search failed: %@",
                            m_feedError.localizedDescription()));
    // A failed search does not mean that there are no matches: the tree stays visible.
    if (m_feedError && !found) {
        showWholeTree();
        return;
    }
    m_model->setRoot(found);
    m_view->expandLoaded();
}

void KNDatabaseTreeViewController::showWholeTree()
{
    if (m_model->root() == m_root)
        return;
    m_model->setRoot(m_root);
    m_view->expand(m_model->index(0, 0));
}

bool KNDatabaseTreeViewController::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_searchField && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Escape && !m_searchField->text().isEmpty()) {
            m_searchField->clear();
            return true;
        }
        if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
            focusTree();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void KNDatabaseTreeViewController::showMenu(const Entry &entry, const QPoint &globalPosition)
{
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (isErrorEntry(entry)) {
        menu->addAction(tr("Try again"), this, [this, entry] { tryAgain(entry); });
        menu->addAction(tr("Copy message"), this,
                        [entry] { QApplication::clipboard()->setText(entry->displayName()); });
    } else {
        KNMenuView::fill(*menu, entry->contextMenu());
        addFilterItems(*menu, entry);
    }
    if (menu->isEmpty())
        delete menu;
    else
        menu->popup(globalPosition);
}

/// A filter is worth its menu item only where there are several objects.
void KNDatabaseTreeViewController::addFilterItems(QMenu &menu, const Entry &entry)
{
    const bool isFiltered = !m_model->filter(m_model->indexOf(*entry)).isEmpty();
    const KNDatabaseTreeEntry::Children children = entry->childEntries();
    constexpr std::size_t Several = 5;
    if (!isFiltered && (!children || children->size() < Several))
        return;
    menu.addSeparator();
    menu.addAction(tr("Filter…"), this, [this, entry] { askForFilter(entry); });
    if (isFiltered)
        menu.addAction(tr("Remove Filter"), this, [this, entry] { setFilter(entry, {}); });
}

/// Filters as the user types; Cancel restores the filter from before.
void KNDatabaseTreeViewController::askForFilter(const Entry &entry)
{
    auto *const dialog = new QInputDialog(this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Filter"));
    dialog->setLabelText(
        KNFormat(tr("Show what has this text in its name in \"%@\":"), entry->displayName()));
    const QString before = m_model->filter(m_model->indexOf(*entry));
    dialog->setTextValue(before);
    connect(dialog, &QInputDialog::textValueChanged, this,
            [this, entry](const QString &text) { setFilter(entry, text); });
    connect(dialog, &QInputDialog::rejected, this, [this, entry, before] { setFilter(entry, before); });
    dialog->open();
}

void KNDatabaseTreeViewController::setFilter(const Entry &entry, const QString &text)
{
    const QModelIndex index = m_model->indexOf(*entry);
    m_model->setFilter(index, text.trimmed());
    m_view->expand(index);
}
