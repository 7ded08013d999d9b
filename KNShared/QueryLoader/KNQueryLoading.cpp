#include "QueryLoader/KNQueryLoading.h"

#include "Foundation/KNDispatch.h"

namespace {

/// Passes a text and its report to the main thread. It keeps itself alive until then.
class Receiver : public KNQueryLoaderDelegate
{
public:
    explicit Receiver(KNQueryLoading::Use use)
        : m_use(std::move(use))
    {
    }

    void keepAlive(std::shared_ptr<Receiver> self) { m_self = std::move(self); }

    void queryLoaderLoadedQuery(KNQueryLoader &loader, const QString &query) override
    {
        const auto self = std::exchange(m_self, nullptr);
        if (!self)
            return; // already delivered
        if (KNDispatch::isMainThread())
            m_use(query, loader.report());
        else
            KNDispatch::mainQueue([self, query, report = loader.report()] { self->m_use(query, report); });
    }

private:
    const KNQueryLoading::Use m_use;
    std::shared_ptr<Receiver> m_self;
};

} // namespace

void KNQueryLoading::load(const KNQueryLoaderPtr &loader, const VantorDBC &details, Use use)
{
    const auto receiver = std::make_shared<Receiver>(std::move(use));
    receiver->keepAlive(receiver);
    loader->setDelegate(receiver);
    loader->beginLoadingQuery(details);
}
