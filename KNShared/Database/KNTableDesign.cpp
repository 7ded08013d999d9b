#include "Database/KNTableDesign.h"

const QString KNTableDesign::RefusedDomain = QStringLiteral("com.quorvex.vantor.design");

KNTableDesign::~KNTableDesign() = default;

KNError KNTableDesign::refused(const QString &reason)
{
    return KNError(RefusedDomain, 0, reason);
}
