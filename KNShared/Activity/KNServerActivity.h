#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QList>
#include <QString>

/// A session of a server. A value type of any thread.
struct KNActivitySession
{
    int id = 0;
    int blockedBy = 0; ///< the session that it waits for; 0 for none, negative for what is no session
    QString status = {};
    QString login = {};
    QString host = {};
    QString program = {};
    QString database = {};
    QString command = {};    ///< the kind of statement that runs; empty for an idle session
    QString waitType = {};   ///< what it waits for now
    qint64 milliseconds = 0; ///< since the request began, or since the last one ended
    int openTransactions = 0;
    QString statement = {}; ///< that runs or, in an idle session, ran last
    bool isOwn = false;     ///< the session that has asked
};

/// The sessions of one moment.
struct KNActivitySnapshot
{
    QList<KNActivitySession> sessions;
    QString remark = {}; ///< says which sessions are missing, and why; null if there are all
};

/// Reads the sessions of a server, and ends them. Connectors subclass it. Blocks on the server; used by one
/// thread at a time, not the UI thread.
class KNSHARED_EXPORT KNServerActivity
{
public:
    /// More sessions are left out.
    static constexpr int MostSessions = 5000;

    virtual ~KNServerActivity();

    virtual KNActivitySnapshot read(KNError *error) const = 0;
    /// Ends a session; the server rolls its transaction back.
    virtual void kill(int session, KNError *error) const = 0;

    /// Below which session each one is shown: the index of the one that it waits for; -1 for those that wait
    /// for none, or for one that is not there. A circle of sessions is cut at its first one. Pure.
    static QList<qsizetype> blockers(const QList<KNActivitySession> &sessions);
};
