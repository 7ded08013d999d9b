#include "Desktop/Query/ClosePrompts.h"

#include "Desktop/Query/QueryDocument.h"
#include "Desktop/Query/QueryTab.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Results/KNResultsPane.h"

#include <QPointer>

void confirmEditLoss(QueryTab &tab, const QString &consequence, const std::function<void()> &proceed)
{
    const qsizetype count = tab.resultsPane()->pendingChanges();
    if (count == 0) {
        proceed();
        return;
    }
    const KNAlerts::Question question{
        count == 1
            ? KNFormat(QueryTab::tr("%@ has 1 edited row that is not applied."), tab.title())
            : KNFormat(QueryTab::tr("%@ has %ld edited rows that are not applied."), tab.title(), count),
        consequence,
        {QueryTab::tr("Cancel"), QueryTab::tr("Discard Changes")}};
    KNAlerts::shared().ask(&tab, question, [self = QPointer(&tab), proceed](int button) {
        if (self && button == 1)
            proceed();
    });
}

void confirmSessionLoss(QueryTab &tab, const std::function<void()> &proceed)
{
    const KNDocumentStatus status = tab.status();
    if (!status.isRunning && !status.hasOpenTransaction) {
        proceed();
        return;
    }
    KNAlerts::Question question;
    if (status.isRunning)
        question = {QueryTab::tr("%1 is running a query.").arg(tab.title()),
                    QueryTab::tr("Closing the tab stops it and rolls back what is not committed."),
                    {QueryTab::tr("Cancel"), QueryTab::tr("Stop and Close")}};
    else
        question = {QueryTab::tr("%1 has a transaction open.").arg(tab.title()),
                    QueryTab::tr("Closing the tab rolls it back."),
                    {QueryTab::tr("Cancel"), QueryTab::tr("Roll Back and Close")}};
    KNAlerts::shared().ask(&tab, question, [self = QPointer(&tab), proceed](int button) {
        if (self && button == 1)
            proceed();
    });
}

void confirmReconnection(QueryTab &tab, const std::function<void()> &proceed)
{
    if (!tab.status().hasOpenTransaction) {
        proceed();
        return;
    }
    const KNAlerts::Question question{QueryTab::tr("%1 has a transaction open.").arg(tab.title()),
                                      QueryTab::tr("A new session rolls it back."),
                                      {QueryTab::tr("Cancel"), QueryTab::tr("Roll Back and Reconnect")}};
    KNAlerts::shared().ask(&tab, question, [self = QPointer(&tab), proceed](int button) {
        if (self && button == 1 && self->canPerform(KNDocumentAction::Reconnect))
            proceed();
    });
}

void confirmTextLoss(QueryTab &tab, const std::function<void()> &proceed)
{
    if (!tab.isModified() || (tab.filePath().isNull() && tab.text().isEmpty())) {
        proceed();
        return;
    }
    const KNAlerts::Question question{
        QueryTab::tr("%1 has changes that are not saved.").arg(tab.title()),
        QueryTab::tr("Your changes will be lost if you do not save them."),
        {QueryTab::tr("Save"), QueryTab::tr("Don't Save"), QueryTab::tr("Cancel")}};
    KNAlerts::shared().ask(&tab, question, [self = QPointer(&tab), proceed](int button) {
        if (self && button == 0)
            self->document()->save(proceed);
        else if (self && button == 1)
            proceed();
    });
}

void confirmNewSession(QueryTab &tab, const KNError &error, const std::function<void()> &proceed)
{
    const KNAlerts::Question question{error.localizedDescription(),
                                      QueryTab::tr("Run on a new connection?"),
                                      {QueryTab::tr("Cancel"), QueryTab::tr("Run on New Connection")}};
    KNAlerts::shared().ask(&tab, question, [self = QPointer(&tab), proceed](int button) {
        if (self && button == 1 && !self->isRunning())
            proceed();
    });
}
