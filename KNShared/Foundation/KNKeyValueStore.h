#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <functional>
#include <memory>

/// Keeps the user's secret texts by key, beyond the end of the program. Nothing here waits: answers come by a
/// call on the main thread, exactly once. On the main thread.
class KNSHARED_EXPORT KNKeyValueStore
{
public:
    /// Codes of the errors in ErrorDomain.
    enum Problem {
        NoService = 1, ///< there is nothing that could keep texts
        Refused,       ///< it is locked, or the user has refused: what it holds is not known
        Damaged,       ///< what it holds cannot be read and never will; it has been put aside
        NotWritten,    ///< no room, no permission
    };
    static const QString ErrorDomain;

    /// The text is null when there is none for the key, and when there is an error.
    using Read = std::function<void(const QString &text, const KNError &error)>;
    using Done = std::function<void(const KNError &error)>;

    virtual ~KNKeyValueStore();

    /// The store of the program: a file of the user's, unless somebody has put another in its place.
    static std::shared_ptr<KNKeyValueStore> shared();
    /// Null brings the file back.
    static void setShared(std::shared_ptr<KNKeyValueStore> store);

    /// What and where the store is, for the user, as it goes into a sentence: "the file /home/...".
    virtual QString name() const = 0;
    virtual void textForKey(const QString &key, Read read) = 0;
    virtual void setText(const QString &key, const QString &text, Done done) = 0;
    /// A key that is not there is no error.
    virtual void removeKey(const QString &key, Done done) = 0;
};
