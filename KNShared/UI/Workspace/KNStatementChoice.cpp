#include "UI/Workspace/KNStatementChoice.h"

#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"

#include <QCoreApplication>

namespace {

constexpr qsizetype LongestShown = 1000; // UTF-16 units

class KNStatementChoice
{
    Q_DECLARE_TR_FUNCTIONS(KNStatementChoice)
};

QString shortened(const QString &statement)
{
    return statement.size() <= LongestShown ? statement : statement.left(LongestShown) + u'…';
}

} // namespace

void KNChooseStatement(QWidget *parent, const KNStatementPair &pair, bool prefersCorrected,
                       const std::function<void(const QString &statement)> &use)
{
    if (prefersCorrected || !pair.differs()) {
        use(pair.preferred(prefersCorrected));
        return;
    }
    const KNAlerts::Question question{
        pair.difference,
        KNFormat(KNStatementChoice::tr("Statement:\n%@\n\nCorrected statement:\n%@"), shortened(pair.exact),
                 shortened(pair.corrected)),
        {KNStatementChoice::tr("Use Corrected Statement"), KNStatementChoice::tr("Run Unchanged"),
         KNStatementChoice::tr("Cancel")}};
    KNAlerts::shared().ask(parent, question, [pair, use](int button) {
        if (button == 0)
            use(pair.corrected);
        else if (button == 1)
            use(pair.exact);
    });
}
