#pragma once

#include "Foundation/KNKeyValueStore.h"

/// Uses the first of two stores until it reports that no service runs, and the second from then on.
class KNSHARED_EXPORT KNFallbackStore : public KNKeyValueStore
{
public:
    KNFallbackStore(std::shared_ptr<KNKeyValueStore> first, std::shared_ptr<KNKeyValueStore> second);
    ~KNFallbackStore() override;

    QString name() const override;
    bool isEncrypted() const override;
    void textForKey(const QString &key, Read read) override;
    void setText(const QString &key, const QString &text, Done done) override;
    void changeText(const QString &key, Change change, Read changed) override;
    void removeKey(const QString &key, Done done) override;

private:
    struct Stores;
    const std::shared_ptr<Stores> m_stores; ///< shared with pending answers
};
