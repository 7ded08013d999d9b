#pragma once

#include "Foundation/KNKeyValueStore.h"

/// The first of two stores, or, from the first time on that it says that no service runs, the second.
class KNSHARED_EXPORT KNFallbackStore : public KNKeyValueStore
{
public:
    KNFallbackStore(std::shared_ptr<KNKeyValueStore> first, std::shared_ptr<KNKeyValueStore> second);
    ~KNFallbackStore() override;

    QString name() const override;
    void textForKey(const QString &key, Read read) override;
    void setText(const QString &key, const QString &text, Done done) override;
    void removeKey(const QString &key, Done done) override;

private:
    struct Stores;
    const std::shared_ptr<Stores> m_stores; ///< shared with answers that are on their way
};
