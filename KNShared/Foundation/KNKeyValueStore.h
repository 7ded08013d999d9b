#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <functional>
#include <memory>

/// Stores the user's secret texts persistently, by key. No function blocks: results are passed to a callback
/// on the main thread, exactly once. On the main thread.
class KNSHARED_EXPORT KNKeyValueStore
{
public:
    /// Error codes in ErrorDomain.
    enum Problem {
        NoService = 1, ///< no storage service is available
        Refused,       ///< the store is locked or the user denied access; its content is unknown
        Damaged,       ///< the content cannot be read, now or later; it has been moved aside
        NotWritten,    ///< no space or no permission
    };
    static const QString ErrorDomain;

    /// `text` is null if the key does not exist, and if there is an error.
    using Read = std::function<void(const QString &text, const KNError &error)>;
    using Done = std::function<void(const KNError &error)>;
    /// Computes the new text of a key from the stored one, which is null if there is none. Called on any
    /// thread.
    using Change = std::function<QString(const QString &stored)>;

    virtual ~KNKeyValueStore();

    /// The program's store: a file of the user unless setShared() replaced it.
    static std::shared_ptr<KNKeyValueStore> shared();
    /// Replaces the shared store; null restores the file.
    static void setShared(std::shared_ptr<KNKeyValueStore> store);

    /// The store's kind and location for use in a sentence to the user: "the file /home/...".
    virtual QString name() const = 0;
    /// Whether the texts are stored encrypted; false by default.
    virtual bool isEncrypted() const;
    virtual void textForKey(const QString &key, Read read) = 0;
    virtual void setText(const QString &key, const QString &text, Done done) = 0;
    /// Replaces a text with what `change` makes of it, and passes the result to `changed`. Stores that
    /// several programs share let no other one change the text meanwhile; this one only reads and writes.
    virtual void changeText(const QString &key, Change change, Read changed);
    /// Removes a key. A key that does not exist is not an error.
    virtual void removeKey(const QString &key, Done done) = 0;
};
