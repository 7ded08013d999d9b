#include "Foundation/KNNotificationCenter.h"

#include <QHash>

#include <mutex>
#include <utility>
#include <vector>

struct KNNotificationCenter::Private
{
    std::mutex mutex;
    QHash<QString, std::vector<std::weak_ptr<Observer>>> observers; ///< by name, guarded by mutex

    void removeEnded(const QString &name)
    {
        const std::lock_guard lock(mutex);
        const auto entry = observers.find(name);
        if (entry == observers.end())
            return;
        std::erase_if(entry.value(), [](const auto &observer) { return observer.expired(); });
        if (entry.value().empty())
            observers.erase(entry);
    }
};

KNNotificationCenter *KNNotificationCenter::defaultCenter()
{
    // Never destroyed: tokens in other static objects may be destroyed later.
    static auto *const center = new KNNotificationCenter;
    return center;
}

KNNotificationCenter::KNNotificationCenter()
    : d(std::make_shared<Private>())
{
}

KNNotificationCenter::~KNNotificationCenter() = default;

KNNotificationCenter::Token KNNotificationCenter::addObserver(const QString &name, Observer observer)
{
    auto held = std::make_shared<Observer>(std::move(observer));
    {
        const std::lock_guard lock(d->mutex);
        d->observers[name].push_back(held);
    }
    // The token is the only owner; its deleter removes the entry if the centre still exists.
    Observer *const raw = held.get();
    return Token(raw, [center = std::weak_ptr(d), name, held = std::move(held)](Observer *) mutable {
        held.reset();
        if (const auto alive = center.lock())
            alive->removeEnded(name);
    });
}

void KNNotificationCenter::post(const QString &name, const QVariantMap &userInfo)
{
    std::vector<std::shared_ptr<Observer>> called;
    {
        const std::lock_guard lock(d->mutex);
        const auto entry = d->observers.constFind(name);
        if (entry == d->observers.cend())
            return;
        for (const auto &observer : entry.value()) {
            if (auto alive = observer.lock())
                called.push_back(std::move(alive));
        }
    }
    for (const auto &observer : called)
        (*observer)(name, userInfo);
}
