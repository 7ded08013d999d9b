#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

/// Notifications posted by name. Thread-safe; observers are called on the posting thread, outside the
/// centre's lock.
class KNSHARED_EXPORT KNNotificationCenter
{
public:
    using Observer = std::function<void(const QString &name, const QVariantMap &userInfo)>;
    /// Ends its observation when the last copy is gone; a call that another thread has begun still comes to
    /// its end.
    using Token = std::shared_ptr<void>;

    static KNNotificationCenter *defaultCenter();

    KNNotificationCenter();
    ~KNNotificationCenter();

    /// Calls `observer` for every later notification of that name until the token is gone.
    [[nodiscard]] Token addObserver(const QString &name, Observer observer);
    void post(const QString &name, const QVariantMap &userInfo = {});

private:
    struct Private;
    std::shared_ptr<Private> d;
};
