#include "Database/VantorDatabaseClient.h"

VantorDatabaseClient::~VantorDatabaseClient() = default;

bool VantorDatabaseClient::insertRows(const QList<QList<KNValue>> &, const QStringList &, const QStringList &,
                                      const QStringList &, KNError *error)
{
    *error = KNError(QStringLiteral("com.quorvex.vantor.import"), 0,
                     QStringLiteral("This kind of server cannot import rows."));
    return false;
}

QString VantorDatabaseClient::optionsBatch(KNError *)
{
    return {};
}

VantorSessionState VantorDatabaseClient::sessionStateAfter(const QString &) const
{
    return {};
}
