#include "UI/Snippets/KNSnippetStore.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNSerialQueue.h"
#include "SQL/Scope/KNSQLDialect.h"
#include "SQL/Snippets/KNSnippetFile.h"

#include <QHash>

namespace {

/// Reads and writes in the order of the requests.
KNSerialQueue &snippetQueue()
{
    static KNSerialQueue queue;
    return queue;
}

} // namespace

KNSnippetStore &KNSnippetStore::forDialect(const KNSQLDialect &dialect)
{
    static auto *const stores = new QHash<const KNSQLDialect *, KNSnippetStore *>;
    KNSnippetStore *&store = (*stores)[&dialect];
    if (!store) {
        store = new KNSnippetStore(dialect);
        store->load([](const KNError &error) {
            if (error)
                KNLogHelper::sharedInstance()->logMessage("%@", error.localizedDescription());
        });
    }
    return *store;
}

KNSnippetStore *KNSnippetStore::forSettings(const VantorDBC &details)
{
    const KNAutocompleteHelper *const helper = details.sharedAutocompleteHelper();
    return helper && helper->dialect() ? &forDialect(*helper->dialect()) : nullptr;
}

KNSnippetStore::KNSnippetStore(const KNSQLDialect &dialect)
    : m_dialect(dialect)
    , m_snippets(dialect.snippets)
{
}

const QList<KNSnippet> &KNSnippetStore::originals() const
{
    return m_dialect.snippets;
}

void KNSnippetStore::load(std::function<void(const KNError &error)> loaded)
{
    snippetQueue().add([this, loaded = std::move(loaded)] {
        KNError error;
        const QList<KNSnippet> snippets = KNSnippetFile::read(m_dialect, &error);
        KNDispatch::mainQueue([this, snippets, error, loaded] {
            m_snippets = snippets;
            if (loaded)
                loaded(error);
        });
    });
}

void KNSnippetStore::save(const QList<KNSnippet> &snippets, std::function<void(const KNError &error)> saved)
{
    snippetQueue().add([this, snippets, saved = std::move(saved)] {
        KNError error;
        const bool isWritten = KNSnippetFile::write(m_dialect, snippets, &error);
        KNDispatch::mainQueue([this, snippets, isWritten, error, saved] {
            if (isWritten)
                m_snippets = snippets;
            saved(error);
        });
    });
}
