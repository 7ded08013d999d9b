#include "Desktop/Query/QueryTabClosing.h"

#include "UI/Alerts/KNAlerts.h"

#include <QPointer>

namespace {

void askAboutText(QueryTab *tab, const std::function<void(bool)> &answer)
{
    if (!tab->isModified() || (tab->filePath().isNull() && tab->text().isEmpty())) {
        answer(true);
        return;
    }
    const KNAlerts::Question question{
        QueryTab::tr("%1 has changes that are not saved.").arg(tab->title()),
        QueryTab::tr("They are lost unless they are saved."),
        {QueryTab::tr("Save"), QueryTab::tr("Don't Save"), QueryTab::tr("Cancel")}};
    KNAlerts::shared().ask(tab, question, [tab = QPointer(tab), answer](int button) {
        if (tab && button == 0)
            tab->save([answer] { answer(true); });
        else
            answer(button == 1);
    });
}

} // namespace

void askBeforeClosing(QueryTab *tab, const std::function<void(bool)> &answer)
{
    const QueryTabStatus status = tab->status();
    if (!status.isRunning && !status.hasOpenTransaction) {
        askAboutText(tab, answer);
        return;
    }
    KNAlerts::Question question;
    if (status.isRunning)
        question = {QueryTab::tr("%1 is running a query.").arg(tab->title()),
                    QueryTab::tr("Closing the tab stops it and rolls back what is not committed."),
                    {QueryTab::tr("Cancel"), QueryTab::tr("Stop and Close")}};
    else
        question = {QueryTab::tr("%1 has a transaction open.").arg(tab->title()),
                    QueryTab::tr("Closing the tab rolls it back."),
                    {QueryTab::tr("Cancel"), QueryTab::tr("Roll Back and Close")}};
    KNAlerts::shared().ask(tab, question, [tab = QPointer(tab), answer](int button) {
        if (tab && button == 1)
            askAboutText(tab, answer);
        else
            answer(false);
    });
}
