#include "CommandLine/TreeLoader.h"

#include "CommandLine/TreePath.h"
#include "DatabaseTree/KNDatabaseTreeErrorEntry.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"

#include <algorithm>

namespace {

constexpr int LongWait = 1000; // milliseconds; the end of a load wakes the main queue

KNError failure(const QString &text)
{
    return KNError(QStringLiteral("com.quorvex.vantor.cli"), 0, text);
}

} // namespace

class TreeLoader::Waker : public KNDatabaseTreeEntryDelegate
{
public:
    void databaseTreeEntryDidBeginLoading(const Entry &) override {}
    void databaseTreeEntryDidFinishLoading(const Entry &) override
    {
        KNDispatch::mainQueue([] {});
    }
};

TreeLoader::TreeLoader(const VantorDBC &settings)
    : m_waker(std::make_shared<Waker>())
    , m_root(settings.createRootDatabaseTreeNode())
{
    m_root->setDelegate(m_waker);
}

TreeLoader::~TreeLoader()
{
    while (!KNDispatch::waitUntilIdle(10))
        KNDispatch::pumpMainQueue(10);
}

KNDatabaseTreeEntry::List TreeLoader::children(const Entry &entry)
{
    if (!entry->canHaveChildren())
        return {};
    entry->loadEntriesAsync(false);
    while (entry->isLoadingAsync())
        KNDispatch::pumpMainQueue(LongWait);
    const KNDatabaseTreeEntry::Children children = entry->childEntries();
    return children ? *children : KNDatabaseTreeEntry::List();
}

TreeLoader::Entry TreeLoader::find(Entry entry, const QStringList &names, KNError *error)
{
    for (const QString &name : names) {
        const auto entries = children(entry);
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [&](const Entry &child) { return child->displayName() == name; });
        if (found != entries.end()) {
            entry = *found;
            continue;
        }
        const auto *failed = entries.size() == 1
                                 ? dynamic_cast<const KNDatabaseTreeErrorEntry *>(entries.front().get())
                                 : nullptr;
        *error = failed ? failed->error()
                        : failure(KNFormat("There is no \"%@\" in \"%@\".", TreePath::escaped(name),
                                           TreePath::escaped(entry->displayName())));
        return nullptr;
    }
    return entry;
}

TreeLoader::Entry TreeLoader::search(const QString &text, KNError *error)
{
    children(m_root);
    std::atomic<bool> isDone = false;
    KNDispatch::globalQueue([&] {
        m_root->updateSearchEntries(error);
        KNDispatch::mainQueue([&] { isDone = true; });
    });
    while (!isDone)
        KNDispatch::pumpMainQueue(LongWait);
    return m_root->copyWithSearchResults(text);
}
