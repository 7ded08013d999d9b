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
                       const std::function<void(const QString &statement)> &use, bool removes)
{
    if (prefersCorrected || !pair.differs()) {
        use(pair.preferred(prefersCorrected));
        return;
    }
    const QStringList choices{KNStatementChoice::tr("Use Corrected Statement"),
                              KNStatementChoice::tr("Run Unchanged")};
    const QStringList cancel{KNStatementChoice::tr("Cancel")};
    const KNAlerts::Question question{
        pair.difference,
        KNFormat(KNStatementChoice::tr("Statement:\n%@\n\nCorrected statement:\n%@"), shortened(pair.exact),
                 shortened(pair.corrected)),
        removes ? cancel + choices : choices + cancel};
    const int first = removes ? 1 : 0; // button of the corrected statement
    KNAlerts::shared().ask(parent, question, [pair, use, first](int button) {
        if (button == first)
            use(pair.corrected);
        else if (button == first + 1)
            use(pair.exact);
    });
}
