#pragma once

#include "Foundation/KNKeyValueStore.h"
#include "UI/KNSharedUIExport.h"

/// Stores texts in the desktop's keyring (Secret Service), which may ask the user to unlock it. The errors
/// are NoService if none runs, Refused and NotWritten. Owned by shared pointers.
class KNSHAREDUI_EXPORT KNKeychainStore : public KNKeyValueStore,
                                          public std::enable_shared_from_this<KNKeychainStore>
{
public:
    /// `service` identifies the program in the keyring.
    explicit KNKeychainStore(const QString &service);

    QString name() const override;
    bool isEncrypted() const override { return true; }
    void textForKey(const QString &key, Read read) override;
    void setText(const QString &key, const QString &text, Done done) override;
    void changeText(const QString &key, Change change, Read changed) override;
    void removeKey(const QString &key, Done done) override;

private:
    const QString m_service;
};
