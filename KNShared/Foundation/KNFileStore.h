#pragma once

#include "Foundation/KNKeyValueStore.h"

/// Keeps texts in one JSON file that only the user can read (mode 0600). It is replaced as a whole, so that
/// neither a crash nor a full disk leaves half of one. A file that is none of its own it renames to
/// "....damaged" before it writes another.
class KNSHARED_EXPORT KNFileStore : public KNKeyValueStore
{
public:
    explicit KNFileStore(const QString &path);
    ~KNFileStore() override;

    QString name() const override;
    void textForKey(const QString &key, Read read) override;
    void setText(const QString &key, const QString &text, Done done) override;
    void removeKey(const QString &key, Done done) override;

private:
    struct File;
    const std::shared_ptr<File> m_file; ///< shared with the work on the global queue
};
