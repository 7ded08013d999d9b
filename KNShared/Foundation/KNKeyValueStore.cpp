#include "Foundation/KNKeyValueStore.h"

#include "Foundation/KNFileStore.h"

#include <QStandardPaths>

namespace {

std::shared_ptr<KNKeyValueStore> makeFileStore()
{
    return std::make_shared<KNFileStore>(
        QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
        QStringLiteral("/vantor/credentials.json"));
}

std::shared_ptr<KNKeyValueStore> &instance()
{
    static std::shared_ptr<KNKeyValueStore> store = makeFileStore();
    return store;
}

} // namespace

const QString KNKeyValueStore::ErrorDomain = QStringLiteral("com.quorvex.vantor.store");

KNKeyValueStore::~KNKeyValueStore() = default;

std::shared_ptr<KNKeyValueStore> KNKeyValueStore::shared()
{
    return instance();
}

void KNKeyValueStore::setShared(std::shared_ptr<KNKeyValueStore> store)
{
    instance() = store ? std::move(store) : makeFileStore();
}

void KNKeyValueStore::changeText(const QString &key, Change change, Read changed)
{
    textForKey(key, [this, key, change = std::move(change),
                     changed = std::move(changed)](const QString &stored, const KNError &error) {
        if (error && error.code() != Damaged) {
            changed(QString(), error);
            return;
        }
        const QString text = change(stored);
        setText(key, text, [text, changed](const KNError &problem) { changed(text, problem); });
    });
}

bool KNKeyValueStore::isEncrypted() const
{
    return false;
}
