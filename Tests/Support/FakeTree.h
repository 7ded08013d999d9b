#pragma once

#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "DatabaseTree/KNDatabaseTreeFixedEntry.h"
#include "Foundation/KNSemaphore.h"
#include "Support/FakeDatabase.h"

#include <functional>

/// An object tree that exists in the test only.
namespace FakeTree {

/// A row without children.
class Leaf : public KNDatabaseTreeEntry
{
public:
    explicit Leaf(const QString &name) { setDisplayName(name); }
    QString dragDropString() const override { return displayName(); }
    void onDoubleClicked() override { ++doubleClicks; }
    void cmdDown() override { ++downs; }
    void cmdRight() override { ++rights; }

    int doubleClicks = 0;
    int downs = 0;
    int rights = 0;
};

/// A root whose children are made in the background by the test's function.
class Root : public DatabaseTreeEntryServerRoot
{
public:
    using Names = std::function<QStringList(KNError *error)>;

    explicit Root(Names names)
        : DatabaseTreeEntryServerRoot(Protocol{})
        , m_names(std::move(names))
    {
        setDisplayName(QStringLiteral("root"));
        setDetails(QStringLiteral("a server of the test"));
    }

    QStringList allDatabaseNames() const override { return {}; }
    bool updateSearchEntries(KNError *error) override
    {
        ++searchUpdates;
        *error = searchError;
        return isSearched || !searchError;
    }
    Ptr copyWithSearchResults(const QString &text) override
    {
        const auto copy = std::make_shared<Root>(m_names);
        List found;
        for (const Ptr &child : childEntries() ? *childEntries() : List()) {
            if (!child->displayName().contains(text))
                continue;
            found.push_back(copy->make<Leaf>(child->displayName()));
        }
        if (found.empty())
            return nullptr;
        copy->setChildEntries(std::move(found));
        return copy;
    }
    KNMenu menu() override { return shownMenu; }
    using KNDatabaseTreeEntry::setChildEntries;

    std::atomic<int> searchUpdates = 0;
    KNError searchError;
    bool isSearched = false; ///< with an error: whether anything was searched at all
    KNMenu shownMenu;
    KNError reportedFailure; ///< of the next loads, which do not show it; set before they begin

protected:
    std::optional<List> loadEntries(KNError *error) override
    {
        if (reportedFailure)
            tellFailLoading(reportedFailure);
        List entries;
        for (const QString &name : m_names(error))
            entries.push_back(make<Leaf>(name));
        return entries;
    }

private:
    const Names m_names;
};

} // namespace FakeTree
