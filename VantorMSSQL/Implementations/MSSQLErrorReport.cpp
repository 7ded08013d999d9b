#include "Implementations/MSSQLErrorReport.h"

#include "Foundation/KNLogHelper.h"

bool MSSQLErrorReport::reportError(const KNError &error, const QVariantMap &details)
{
    for (const char *expected : {"use the Windows Azure Management Portal", "login failed for user",
                                 "login is from an untrusted domain"}) {
        if (error.localizedDescription().contains(QLatin1String(expected)))
            return false;
    }
    KNLogHelper::sharedInstance()->logError(error, details);
    return true;
}
