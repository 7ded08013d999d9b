#include "Foundation/KNFallbackStore.h"

struct KNFallbackStore::Stores
{
    std::shared_ptr<KNKeyValueStore> used;
    std::shared_ptr<KNKeyValueStore> second;

    /// Whether to repeat the operation with the second store.
    bool fallsBack(const KNError &error)
    {
        if (error.domain() != ErrorDomain || error.code() != NoService || used == second)
            return false;
        used = second;
        return true;
    }
};

KNFallbackStore::KNFallbackStore(std::shared_ptr<KNKeyValueStore> first,
                                 std::shared_ptr<KNKeyValueStore> second)
    : m_stores(std::make_shared<Stores>(Stores{std::move(first), std::move(second)}))
{
}

KNFallbackStore::~KNFallbackStore() = default;

QString KNFallbackStore::name() const
{
    return m_stores->used->name();
}

bool KNFallbackStore::isEncrypted() const
{
    return m_stores->used->isEncrypted();
}

void KNFallbackStore::textForKey(const QString &key, Read read)
{
    m_stores->used->textForKey(
        key, [stores = m_stores, key, read = std::move(read)](const QString &text, const KNError &error) {
            if (stores->fallsBack(error))
                stores->used->textForKey(key, read);
            else
                read(text, error);
        });
}

void KNFallbackStore::setText(const QString &key, const QString &text, Done done)
{
    m_stores->used->setText(key, text,
                            [stores = m_stores, key, text, done = std::move(done)](const KNError &error) {
                                if (stores->fallsBack(error))
                                    stores->used->setText(key, text, done);
                                else
                                    done(error);
                            });
}

void KNFallbackStore::changeText(const QString &key, Change change, Read changed)
{
    m_stores->used->changeText(
        key, change, [stores = m_stores, key, change, changed](const QString &text, const KNError &error) {
            if (stores->fallsBack(error))
                stores->used->changeText(key, change, changed);
            else
                changed(text, error);
        });
}

void KNFallbackStore::removeKey(const QString &key, Done done)
{
    m_stores->used->removeKey(key, [stores = m_stores, key, done = std::move(done)](const KNError &error) {
        if (stores->fallsBack(error))
            stores->used->removeKey(key, done);
        else
            done(error);
    });
}
