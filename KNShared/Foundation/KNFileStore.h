#pragma once

#include "Foundation/KNKeyValueStore.h"

/// Stores texts in one JSON file that only the user can read (mode 0600). The file is replaced atomically, so
/// that neither a crash nor a full disk leaves a partial one. An existing file in another format is renamed
/// to "....damaged" before the first write. A lock file beside it lets one program change it at a time.
class KNSHARED_EXPORT KNFileStore : public KNKeyValueStore
{
public:
    explicit KNFileStore(const QString &path);
    ~KNFileStore() override;

    QString name() const override;
    void textForKey(const QString &key, Read read) override;
    void setText(const QString &key, const QString &text, Done done) override;
    void changeText(const QString &key, Change change, Read changed) override;
    void removeKey(const QString &key, Done done) override;

private:
    struct File;
    const std::shared_ptr<File> m_file; ///< shared with the work on the global queue
};
