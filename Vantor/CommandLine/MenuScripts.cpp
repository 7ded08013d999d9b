#include "CommandLine/MenuScripts.h"

#include "DatabaseTree/KNDatabaseTreeEntry.h"

#include <condition_variable>
#include <mutex>
#include <optional>

namespace {

struct TitledScript
{
    QString title;
    KNQueryLoaderPtr script;
};

KNQueryLoaderPtr scriptOf(const KNMenuItem &item)
{
    const auto *script = std::get_if<std::shared_ptr<KNQueryLoader>>(&item.representedObject);
    return script ? *script : nullptr;
}

/// The script that all items of a menu share; null if they have none or different ones.
KNQueryLoaderPtr commonScript(const KNMenu &menu)
{
    const KNQueryLoaderPtr first = menu.items.empty() ? nullptr : scriptOf(menu.items.front());
    for (const KNMenuItem &item : menu.items) {
        if (scriptOf(item) != first)
            return nullptr;
    }
    return first;
}

void collect(const KNMenu &menu, std::vector<TitledScript> &scripts)
{
    for (const KNMenuItem &item : menu.items) {
        const KNQueryLoaderPtr script = item.submenu ? commonScript(*item.submenu) : scriptOf(item);
        if (script)
            scripts.push_back({item.title, script});
        else if (item.submenu)
            collect(*item.submenu, scripts);
    }
}

std::vector<TitledScript> scriptsOf(const KNMenu &menu)
{
    std::vector<TitledScript> scripts;
    collect(menu, scripts);
    return scripts;
}

/// Stores the text, which may arrive on any thread.
class Receiver : public KNQueryLoaderDelegate
{
public:
    void queryLoaderLoadedQuery(KNQueryLoader &, const QString &query) override
    {
        const std::lock_guard lock(m_mutex);
        m_text = query;
        m_arrived.notify_all();
    }

    QString wait()
    {
        std::unique_lock lock(m_mutex);
        m_arrived.wait(lock, [this] { return m_text.has_value(); });
        return *m_text;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::optional<QString> m_text; ///< guarded by m_mutex
};

} // namespace

QStringList MenuScripts::titles(const KNMenu &menu)
{
    QStringList titles;
    for (const TitledScript &script : scriptsOf(menu))
        titles.append(script.title);
    return titles;
}

KNQueryLoaderPtr MenuScripts::find(const KNMenu &menu, const QString &title)
{
    for (const TitledScript &script : scriptsOf(menu)) {
        if (script.title.compare(title, Qt::CaseInsensitive) == 0)
            return script.script;
    }
    return nullptr;
}

QString MenuScripts::textOf(const KNQueryLoaderPtr &script, const VantorDBC &settings)
{
    const auto receiver = std::make_shared<Receiver>();
    script->setDelegate(receiver);
    script->beginLoadingQuery(settings);
    return receiver->wait();
}
