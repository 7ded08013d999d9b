#include "UI/DatabaseTree/KNDatabaseTreeModel.h"

#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Icons/KNIcon.h"
#include "UI/KNPlainToolTip.h"

#include <QMimeData>
#include <QPointer>

#include <algorithm>

namespace {

bool isError(const KNDatabaseTreeEntry &entry)
{
    return dynamic_cast<const KNDatabaseTreeErrorEntry *>(&entry) != nullptr;
}

bool isHead(const KNDatabaseTreeEntry &entry)
{
    return entry.tableCellIdentifier().startsWith(QLatin1String("HeaderCell"));
}

/// The children whose names contain the text, and errors.
KNDatabaseTreeEntry::Children filtered(const KNDatabaseTreeEntry::Children &children, const QString &text)
{
    if (!children || text.isEmpty())
        return children;
    KNDatabaseTreeEntry::List matching;
    std::copy_if(children->begin(), children->end(), std::back_inserter(matching), [&](const auto &child) {
        return child->displayName().contains(text, Qt::CaseInsensitive) || isError(*child);
    });
    return std::make_shared<const KNDatabaseTreeEntry::List>(std::move(matching));
}

} // namespace

/// A displayed row. Its children are those reported to the view, which may be older than the entry's.
struct KNDatabaseTreeModel::Node
{
    Entry entry;
    Node *parent = nullptr;
    int row = 0;
    KNDatabaseTreeEntry::Children shown; ///< without regard to the filter
    QString filter;                      ///< empty for none
    std::vector<std::unique_ptr<Node>> children;
};

QString KNDatabaseTreeModel::detailsOf(const Node &node) const
{
    if (isHead(*node.entry) && !node.shown && m_loading.contains(node.entry.get()))
        return tr("Connecting…");
    if (!node.filter.isEmpty())
        return KNFormat(tr("names with \"%@\""), node.filter);
    return node.entry->details();
}

QString KNDatabaseTreeModel::nameWithDetails(const Node &node) const
{
    const QString name = node.entry->displayName();
    const QString details = detailsOf(node);
    return details.isEmpty() ? name : KNFormat("%@ %@", name, details);
}

/// Passes load notifications from their threads to the UI thread.
class KNDatabaseTreeModel::LoadWatcher : public KNDatabaseTreeEntryDelegate
{
public:
    explicit LoadWatcher(KNDatabaseTreeModel *model)
        : m_model(model)
    {
    }

    void databaseTreeEntryDidBeginLoading(const Entry &entry) override
    {
        tell(entry, &KNDatabaseTreeModel::didBeginLoading);
    }
    void databaseTreeEntryDidFinishLoading(const Entry &entry) override
    {
        tell(entry, &KNDatabaseTreeModel::didFinishLoading);
    }
    void databaseTreeEntryDidFailLoading(const Entry &, const KNError &error) override
    {
        KNDispatch::mainQueue([model = m_model, error] {
            if (model)
                Q_EMIT model->loadFailed(error);
        });
    }

private:
    void tell(const Entry &entry, void (KNDatabaseTreeModel::*what)(const Entry &))
    {
        KNDispatch::mainQueue([model = m_model, entry, what] {
            if (model)
                (model->*what)(entry);
        });
    }

    const QPointer<KNDatabaseTreeModel> m_model;
};

KNDatabaseTreeModel::KNDatabaseTreeModel(QObject *parent)
    : QAbstractItemModel(parent)
    , m_watcher(std::make_shared<LoadWatcher>(this))
{
}

KNDatabaseTreeModel::~KNDatabaseTreeModel() = default;

void KNDatabaseTreeModel::setRoot(const Entry &root)
{
    beginResetModel();
    m_nodes.clear();
    m_rootNode.reset();
    m_root = root;
    if (root) {
        root->setDelegate(m_watcher);
        m_rootNode = std::make_unique<Node>();
        m_rootNode->entry = root;
        m_nodes.insert(root.get(), m_rootNode.get());
    }
    endResetModel();
    if (m_rootNode)
        updateChildren(*m_rootNode);
}

KNDatabaseTreeModel::Node *KNDatabaseTreeModel::nodeAt(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<Node *>(index.internalPointer()) : nullptr;
}

QModelIndex KNDatabaseTreeModel::indexOf(const Node &node) const
{
    return createIndex(node.row, 0, &node);
}

KNDatabaseTreeModel::Entry KNDatabaseTreeModel::entry(const QModelIndex &index) const
{
    const Node *const node = nodeAt(index);
    return node ? node->entry : nullptr;
}

void KNDatabaseTreeModel::setFilter(const QModelIndex &index, const QString &text)
{
    Node *const node = nodeAt(index);
    if (!node || node->filter == text)
        return;
    node->filter = text;
    node->shown = nullptr; // the children are the same, but not those to show
    updateChildren(*node);
    Q_EMIT dataChanged(index, index);
}

QString KNDatabaseTreeModel::filter(const QModelIndex &index) const
{
    const Node *const node = nodeAt(index);
    return node ? node->filter : QString();
}

QModelIndex KNDatabaseTreeModel::indexOf(const KNDatabaseTreeEntry &entry) const
{
    const Node *const node = m_nodes.value(&entry);
    return node ? indexOf(*node) : QModelIndex();
}

QModelIndex KNDatabaseTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    const Node *const node = nodeAt(parent);
    return indexOf(node ? *node->children[static_cast<std::size_t>(row)] : *m_rootNode);
}

QModelIndex KNDatabaseTreeModel::parent(const QModelIndex &index) const
{
    const Node *const node = nodeAt(index);
    return node && node->parent ? indexOf(*node->parent) : QModelIndex();
}

int KNDatabaseTreeModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return m_rootNode ? 1 : 0;
    return static_cast<int>(nodeAt(parent)->children.size());
}

int KNDatabaseTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

bool KNDatabaseTreeModel::hasChildren(const QModelIndex &parent) const
{
    const Node *const node = nodeAt(parent);
    if (!node)
        return m_rootNode != nullptr;
    const bool isKnownEmpty = node->shown && node->children.empty() && node->filter.isEmpty();
    return node->entry->canHaveChildren() && !isKnownEmpty;
}

bool KNDatabaseTreeModel::canFetchMore(const QModelIndex &parent) const
{
    const Node *const node = nodeAt(parent);
    return node && node->entry->canHaveChildren() && !node->shown && !node->entry->isLoadingAsync();
}

void KNDatabaseTreeModel::fetchMore(const QModelIndex &parent)
{
    Node *const node = nodeAt(parent);
    if (!node)
        return;
    node->entry->loadEntriesAsync(false);
    updateChildren(*node); // some entries provide their children at once
}

QVariant KNDatabaseTreeModel::data(const QModelIndex &index, int role) const
{
    const Node *const node = nodeAt(index);
    if (!node)
        return {};
    const KNDatabaseTreeEntry &entry = *node->entry;
    switch (role) {
    case Qt::DisplayRole:
        return entry.displayName();
    case Qt::DecorationRole:
        return KNIcon::named(entry.iconName());
    case Qt::ToolTipRole:
        return KNPlainToolTip(nameWithDetails(*node));
    case Qt::AccessibleTextRole:
        return nameWithDetails(*node);
    case DetailsRole:
        return detailsOf(*node);
    case IsBusyRole:
        return m_loading.contains(&entry);
    case IsErrorRole:
        return isError(entry);
    case IsDimmedRole:
        return entry.isDimmed();
    case IsHeadRole:
        return isHead(entry);
    case HeightRole:
        return entry.tableCellHeight();
    default:
        return {};
    }
}

Qt::ItemFlags KNDatabaseTreeModel::flags(const QModelIndex &index) const
{
    const Node *const node = nodeAt(index);
    if (!node)
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!node->entry->canHaveChildren())
        flags |= Qt::ItemNeverHasChildren;
    // A layout queries the flags of all rows, and creating a drag text is slow: mimeData() creates it, and
    // without a text there is no drag.
    if (node->parent)
        flags |= Qt::ItemIsDragEnabled;
    return flags;
}

QStringList KNDatabaseTreeModel::mimeTypes() const
{
    return {QStringLiteral("text/plain")};
}

QMimeData *KNDatabaseTreeModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList texts;
    for (const QModelIndex &index : indexes) {
        if (const QString text = entry(index)->insertedText(); !text.isNull())
            texts.append(text);
    }
    if (texts.isEmpty())
        return nullptr;
    auto *const data = new QMimeData;
    data->setText(texts.join(QStringLiteral(", ")));
    return data;
}

void KNDatabaseTreeModel::setLoading(const KNDatabaseTreeEntry *entry, bool isLoading)
{
    const bool wasBusy = isBusy();
    if (isLoading)
        m_loading.insert(entry);
    else
        m_loading.remove(entry);
    if (isBusy() != wasBusy)
        Q_EMIT busyChanged(isBusy());
}

void KNDatabaseTreeModel::didBeginLoading(const Entry &entry)
{
    Node *const node = m_nodes.value(entry.get());
    if (!node)
        return;
    setLoading(entry.get(), true);
    updateChildren(*node); // a load may begin by removing the old children
    Q_EMIT dataChanged(indexOf(*node), indexOf(*node));
}

void KNDatabaseTreeModel::didFinishLoading(const Entry &entry)
{
    setLoading(entry.get(), false);
    Node *const node = m_nodes.value(entry.get());
    if (!node)
        return;
    updateChildren(*node);
    Q_EMIT dataChanged(indexOf(*node), indexOf(*node));
}

/// Reports the differences between the displayed children and those of the entry to the view.
void KNDatabaseTreeModel::updateChildren(Node &node)
{
    const KNDatabaseTreeEntry::Children children = node.entry->childEntries();
    if (children == node.shown)
        return;
    static const KNDatabaseTreeEntry::List none;
    const KNDatabaseTreeEntry::Children visible = filtered(children, node.filter);
    const KNDatabaseTreeEntry::List &entries = visible ? *visible : none;
    const auto isSame = [](const std::unique_ptr<Node> &shown, const Entry &entry) {
        return shown->entry == entry;
    };
    const auto firstDifference =
        std::mismatch(node.children.begin(), node.children.end(), entries.begin(), entries.end(), isSame)
            .first;
    const auto first = firstDifference - node.children.begin();
    const auto sameAtEnd = std::mismatch(node.children.rbegin(), node.children.rend() - first,
                                         entries.rbegin(), entries.rend() - first, isSame)
                               .first -
                           node.children.rbegin();
    const auto removed = static_cast<std::ptrdiff_t>(node.children.size()) - first - sameAtEnd;
    const auto added = static_cast<std::ptrdiff_t>(entries.size()) - first - sameAtEnd;
    node.shown = children;
    replaceRows(node, static_cast<int>(first), static_cast<int>(removed), entries, static_cast<int>(added));
    Q_EMIT childrenReplaced(indexOf(node));
}

void KNDatabaseTreeModel::replaceRows(Node &node, int first, int removed,
                                      const KNDatabaseTreeEntry::List &entries, int added)
{
    auto &rows = node.children;
    const auto place = rows.begin() + first;
    if (removed > 0) {
        beginRemoveRows(indexOf(node), first, first + removed - 1);
        std::for_each(place, place + removed, [this](const auto &child) { forget(*child); });
        rows.erase(place, place + removed);
    }
    const auto renumber = [&] {
        for (auto row = static_cast<std::size_t>(first); row < rows.size(); ++row)
            rows[row]->row = static_cast<int>(row);
    };
    if (removed > 0) {
        renumber();
        endRemoveRows();
    }
    if (added > 0) {
        beginInsertRows(indexOf(node), first, first + added - 1);
        std::vector<std::unique_ptr<Node>> fresh;
        fresh.reserve(static_cast<std::size_t>(added));
        for (int i = 0; i < added; ++i) {
            auto child = std::make_unique<Node>();
            child->entry = entries[static_cast<std::size_t>(first + i)];
            child->parent = &node;
            m_nodes.insert(child->entry.get(), child.get());
            fresh.push_back(std::move(child));
        }
        rows.insert(rows.begin() + first, std::make_move_iterator(fresh.begin()),
                    std::make_move_iterator(fresh.end()));
        renumber();
        endInsertRows();
    }
    // Search copies are created with their children.
    for (int i = 0; i < added; ++i) {
        Node &child = *rows[static_cast<std::size_t>(first + i)];
        if (child.entry->childEntries())
            updateChildren(child);
    }
}

void KNDatabaseTreeModel::forget(const Node &node)
{
    m_nodes.remove(node.entry.get());
    setLoading(node.entry.get(), false);
    for (const auto &child : node.children)
        forget(*child);
}
