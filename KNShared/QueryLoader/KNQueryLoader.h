#pragma once

#include "KNSharedExport.h"
#include "QueryLoader/KNQueryReport.h"

#include <QString>

#include <functional>
#include <memory>
#include <mutex>

class KNQueryLoader;
class QIODevice;
class VantorDBC;

/// Receives the text that a KNQueryLoader generates.
class KNSHARED_EXPORT KNQueryLoaderDelegate
{
public:
    virtual ~KNQueryLoaderDelegate();

    /// Called once per start, also after a failure: the text then describes the failure or is null, and the
    /// loader's report() contains it. Called on the loader's thread.
    virtual void queryLoaderLoadedQuery(KNQueryLoader &loader, const QString &query) = 0;
};

/// Generates an SQL text, such as the script of an object, and passes it to its delegate. Has no connection
/// of its own. Held by std::shared_ptr; running work keeps it alive.
class KNSHARED_EXPORT KNQueryLoader : public std::enable_shared_from_this<KNQueryLoader>
{
public:
    virtual ~KNQueryLoader();

    /// The delegate is not owned. Set it before loading begins.
    std::shared_ptr<KNQueryLoaderDelegate> delegate() const { return m_delegate.lock(); }
    void setDelegate(const std::weak_ptr<KNQueryLoaderDelegate> &delegate) { m_delegate = delegate; }

    /// Checks a finished text before delivery: corrects it, and adds notices or a failure to its report.
    using Review = std::function<void(QString *text, KNQueryReport *report)>;
    /// Sets the review. Call before loading begins. It runs on the delivering thread, and not for a null
    /// text.
    void setReview(Review review) { m_review = std::move(review); }

    /// The report on the most recently delivered text. Any thread.
    KNQueryReport report() const;

    /// Starts generating the text for the server of these settings; copies them if it continues after
    /// returning. A loader that queries the server returns at once and delivers on a thread of the global
    /// queue; other loaders deliver before this returns. Any thread.
    virtual void beginLoadingQuery(const VantorDBC &details) = 0;

    /// Writes the text in UTF-8 while it is made, for one that may not fit into memory; `report` gets what is
    /// wrong with it. False, with nothing written, when there is nothing to write or the loader makes its
    /// text as a whole: load it then. The caller checks whether the device took everything. Blocks on the
    /// server.
    virtual bool writeQuery(const VantorDBC &details, QIODevice &device, KNQueryReport *report) const;

protected:
    /// Passes the text to the delegate if it still exists.
    void deliver(QString query, KNQueryReport report = {});

private:
    std::weak_ptr<KNQueryLoaderDelegate> m_delegate;
    Review m_review;
    mutable std::mutex m_mutex;
    KNQueryReport m_report; ///< guarded by m_mutex
};

using KNQueryLoaderPtr = std::shared_ptr<KNQueryLoader>;
