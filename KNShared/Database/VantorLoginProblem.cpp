#include "Database/VantorLoginProblem.h"

namespace {

const QString ProblemKey = QStringLiteral("com.quorvex.vantor.loginProblem");

} // namespace

VantorLoginProblem VantorLoginProblemOf(const KNError &error)
{
    return static_cast<VantorLoginProblem>(error.userInfo().value(ProblemKey, 0).toInt());
}

QVariantMap VantorLoginProblemInfo(VantorLoginProblem problem)
{
    return {{ProblemKey, static_cast<int>(problem)}};
}
