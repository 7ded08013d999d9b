#pragma once

#include "KNSharedExport.h"

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

/// Posts notifications by name. Thread-safe; observers are called on the posting thread, outside the centre's
/// lock.
class KNSHARED_EXPORT KNNotificationCenter
{
public:
    using Observer = std::function<void(const QString &name, const QVariantMap &userInfo)>;
    /// Removes its observer when the last copy is destroyed. A call already started on another thread still
    /// completes.
    using Token = std::shared_ptr<void>;

    static KNNotificationCenter *defaultCenter();

    KNNotificationCenter();
    ~KNNotificationCenter();

    /// Calls `observer` for every later notification with that name until the token is destroyed.
    [[nodiscard]] Token addObserver(const QString &name, Observer observer);
    void post(const QString &name, const QVariantMap &userInfo = {});

private:
    struct Private;
    std::shared_ptr<Private> d;
};
