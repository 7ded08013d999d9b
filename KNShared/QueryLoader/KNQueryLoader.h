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

/// Receives the text that a KNQueryLoader makes.
class KNSHARED_EXPORT KNQueryLoaderDelegate
{
public:
    virtual ~KNQueryLoaderDelegate();

    /// Once per start, also when it failed: the text then says so, or is null, and the loader's report()
    /// holds the failure. Called on whatever thread the loader works.
    virtual void queryLoaderLoadedQuery(KNQueryLoader &loader, const QString &query) = 0;
};

/// Makes one SQL text, such as the script of an object, and hands it to its delegate. It has no connection of
/// its own. Held by std::shared_ptr; work in flight keeps it alive.
class KNSHARED_EXPORT KNQueryLoader : public std::enable_shared_from_this<KNQueryLoader>
{
public:
    virtual ~KNQueryLoader();

    /// Not owned. To be set before the loading begins.
    std::shared_ptr<KNQueryLoaderDelegate> delegate() const { return m_delegate.lock(); }
    void setDelegate(const std::weak_ptr<KNQueryLoaderDelegate> &delegate) { m_delegate = delegate; }

    /// Checks a finished text before it is delivered: mends it, and adds notices or a failure to its report.
    using Review = std::function<void(QString *text, KNQueryReport *report)>;
    /// To be set before the loading begins; runs on the thread that delivers. Not called for a null text.
    void setReview(Review review) { m_review = std::move(review); }

    /// The report on the text that was delivered last. Any thread.
    KNQueryReport report() const;

    /// Starts making the text for the server with these settings, of which it takes a copy if it works on.
    /// A loader that asks the server returns at once and delivers on a thread of the global queue; one that
    /// knows its text delivers before this returns. Any thread.
    virtual void beginLoadingQuery(const VantorDBC &details) = 0;

    /// Writes the text in UTF-8 while it is made, for one that may not fit into memory; `report` gets what is
    /// wrong with it. False, with nothing written, when
    /// there is nothing to write, or for a loader that makes its text as a whole: load it then. The caller
    /// checks whether the device took everything. Blocks on the server.
    virtual bool writeQuery(const VantorDBC &details, QIODevice &device, KNQueryReport *report) const;

protected:
    /// Passes the text to the delegate, if that is still there.
    void deliver(QString query, KNQueryReport report = {});

private:
    std::weak_ptr<KNQueryLoaderDelegate> m_delegate;
    Review m_review;
    mutable std::mutex m_mutex;
    KNQueryReport m_report; ///< guarded by m_mutex
};

using KNQueryLoaderPtr = std::shared_ptr<KNQueryLoader>;
