#include "Activity/KNServerActivity.h"

#include <QHash>

KNServerActivity::~KNServerActivity() = default;

namespace {

/// Whether following the blockers from `start` leads back to it.
bool isInCircle(qsizetype start, const QList<qsizetype> &blockers)
{
    qsizetype at = blockers[start];
    for (qsizetype steps = 0; at >= 0 && steps < blockers.size(); ++steps) {
        if (at == start)
            return true;
        at = blockers[at];
    }
    return false;
}

} // namespace

QList<qsizetype> KNServerActivity::blockers(const QList<KNActivitySession> &sessions)
{
    QHash<int, qsizetype> positions;
    for (qsizetype i = 0; i < sessions.size(); ++i)
        positions.insert(sessions[i].id, i);
    QList<qsizetype> blockers;
    for (const KNActivitySession &session : sessions) {
        const bool waitsForItself = session.blockedBy == session.id; // parts of one parallel statement
        blockers.append(waitsForItself ? -1 : positions.value(session.blockedBy, -1));
    }
    for (qsizetype i = 0; i < blockers.size(); ++i) {
        if (isInCircle(i, blockers))
            blockers[i] = -1;
    }
    return blockers;
}
