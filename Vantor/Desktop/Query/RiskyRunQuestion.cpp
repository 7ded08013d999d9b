#include "Desktop/Query/RiskyRunQuestion.h"

#include "Desktop/Query/QueryBatches.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWidget>

namespace {

struct RiskyRunQuestionTexts
{
    Q_DECLARE_TR_FUNCTIONS(RiskyRunQuestion)
};

QStringList riskyStatements(const QueryRequest &request, const VantorDBC &details)
{
    QStringList found;
    const QList<KNQueryDetails> batches = batchesOf(request, details);
    for (const KNQueryDetails &batch : batches)
        found += details.riskyStatements(batch.targetQuery);
    return found;
}

/// The first statements, and how many there are more.
QString listOf(const QStringList &statements)
{
    constexpr qsizetype Most = 8;
    QString text = statements.mid(0, Most).join(QLatin1Char('\n'));
    if (statements.size() > Most)
        text += KNFormat(RiskyRunQuestionTexts::tr("\n… and %ld more"), statements.size() - Most);
    return text;
}

void confirm(QWidget *window, const QString &name, const QStringList &statements,
             const std::function<void()> &run)
{
    KNAlerts::Question question;
    question.title =
        KNFormat(RiskyRunQuestionTexts::tr("Run this on the production connection \"%@\"?"), name);
    question.text =
        KNFormat(RiskyRunQuestionTexts::tr(
                     "These statements change all rows of a table, or drop or empty an object:\n\n%@"),
                 listOf(statements));
    question.buttons = QStringList{RiskyRunQuestionTexts::tr("Cancel"), RiskyRunQuestionTexts::tr("Run")};
    KNAlerts::shared().ask(window, question, [window = QPointer(window), run](int button) {
        if (window && button == 1)
            run();
    });
}

} // namespace

void RiskyRunQuestion::ask(QWidget *window, const QueryRequest &request, const VantorDBC &details,
                           std::function<void()> run)
{
    if (!details.isProduction()) {
        run();
        return;
    }
    KNDispatch::globalQueue(
        [window = QPointer(window), request, copy = details.copy(), run = std::move(run)] {
            const QStringList found = riskyStatements(request, *copy);
            KNDispatch::mainQueue([window, found, copy, run] {
                if (!window)
                    return;
                if (found.isEmpty())
                    run();
                else
                    confirm(window, copy->alias().isEmpty() ? copy->host() : copy->alias(), found, run);
            });
        });
}
