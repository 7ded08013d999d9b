#include "UI/ResultEditing/KNApplyRowChanges.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "RowEditing/KNRevisedResult.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/KNPreferences.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNResultTableModel.h"
#include "UI/Workspace/KNProgressSheet.h"
#include "UI/Workspace/KNQueryPreview.h"

#include <QPointer>
#include <QWidget>

#include <algorithm>

namespace {

using Changes = KNStatementOutcome::Changes;
using Application = std::shared_ptr<KNRowApplication>;

class ApplyTexts
{
    Q_DECLARE_TR_FUNCTIONS(KNApplyRowChanges)
};

QString countText(qsizetype count)
{
    return count == 1 ? ApplyTexts::tr("1 change")
                      : KNFormat(ApplyTexts::tr("%@ changes"), KNCountText(count));
}

QString titleOf(const KNResultEditing &editing, qsizetype count)
{
    return KNFormat(ApplyTexts::tr("Apply %@ to %@.%@?"), countText(count), editing.table()->schema,
                    editing.table()->name);
}

/// Puts a result with the applied changes in place of the old one.
void showApplied(QWidget *parent, KNResultEditing &editing, const Application &application)
{
    const bool hasUnreadRows =
        std::any_of(application->changes().begin(), application->changes().end(), [&](const auto &change) {
            const KNDatabaseResultSetPtr row = application->readRows().value(change.row);
            return change.kind == KNRowChange::Kind::Insert && (!row || row->rows().rowCount() == 0);
        });
    KNDispatch::globalQueue([self = QPointer(&editing), window = QPointer(parent), hasUnreadRows,
                             result = editing.model().result(), table = *editing.table(),
                             edits = editing.edits(), application] {
        const KNDatabaseResultSetPtr revised = KNRevisedResult(*result, table, edits, *application);
        KNDispatch::mainQueue([self, window, hasUnreadRows, revised] {
            if (!self)
                return;
            self->finishApplying(revised);
            if (hasUnreadRows)
                KNAlerts::shared().showMessage(
                    window, ApplyTexts::tr("The changes were applied."),
                    ApplyTexts::tr(
                        "Some new rows show what you entered, because the key that the server gave them "
                        "cannot be known. Run the query again to see all of their values."));
        });
    });
}

/// `outcome` is that of the last run; without one nothing was run.
void finish(QWidget *parent, KNResultEditing &editing, const Application &application,
            const KNStatementOutcome &outcome, Changes changes)
{
    if (outcome.isInOuterTransaction)
        editing.session().transactionChanged(*outcome.isInOuterTransaction);
    if (outcome.isInOuterTransaction == false)
        KNAlerts::shared().showMessage(
            parent, ApplyTexts::tr("The open transaction was rolled back."),
            ApplyTexts::tr("The server ended it because of the error, with everything that was done in it."));
    if (changes == Changes::All)
        showApplied(parent, editing, application);
    else
        editing.setApplying(false);
}

void showPreview(QWidget *parent, KNResultEditing &editing, const KNStatementPair &script,
                 const Application &application)
{
    KNQueryPreview *const preview =
        KNQueryPreview::createQueryPreviewViewContoller(parent, *editing.session().details);
    preview->setTitle(titleOf(editing, application->changes().size()),
                      ApplyTexts::tr("The statements run in the session of this tab: all of them or none."),
                      ApplyTexts::tr("Apply"), ApplyTexts::tr("Applying the changes…"));
    preview->setRemoves(std::any_of(application->changes().begin(), application->changes().end(),
                                    [](const auto &each) { return each.kind == KNRowChange::Kind::Delete; }));
    preview->setQueryLoader(script.loader(editing.statements()->prefersCorrected()));
    preview->setUseTransaction(true);
    preview->setSession(application);
    preview->beginSheet([self = QPointer(&editing), parent, preview, application](Changes changes) {
        if (self)
            finish(parent, *self, application, preview->outcome(), changes);
    });
}

void showFailure(QWidget *parent, const KNStatementOutcome &outcome)
{
    if (outcome.error)
        return KNAlerts::shared().showError(parent, outcome.error);
    if (outcome.wasCancelled && outcome.changes == Changes::None)
        KNAlerts::shared().showMessage(parent, ApplyTexts::tr("The changes were not applied."),
                                       ApplyTexts::tr("You cancelled. Nothing was changed."));
}

void runWithoutPreview(QWidget *parent, KNResultEditing &editing, const QString &script,
                       const Application &application)
{
    const std::shared_ptr<KNProgressSheet> sheet = KNProgressSheet::create(parent);
    sheet->setLabelString(KNFormat(ApplyTexts::tr("Applying %@…"), countText(application->changes().size())));
    const auto run = KNStatementRun::start(
        {script, true, {}, application}, *editing.session().details, &editing,
        [&editing, sheet, window = QPointer(parent), application](const KNStatementOutcome &outcome) {
            sheet->end();
            if (!outcome.succeeded())
                showFailure(window, outcome);
            finish(window, editing, application, outcome, outcome.changes);
        });
    sheet->setCancelBlock([weak = std::weak_ptr(run)] {
        if (const auto running = weak.lock())
            running->cancel();
    });
    sheet->begin();
}

} // namespace

void KNApplyRowChanges(QWidget *parent, KNResultEditing &editing)
{
    if (!editing.isEditable() || editing.edits().isEmpty())
        return;
    QString problem;
    const QList<KNRowChange> changes = KNRowChange::listOf(
        editing.edits(), *editing.table(), *editing.model().result(), *editing.statements(), &problem);
    const std::shared_ptr<void> lease = problem.isEmpty() ? editing.session().lease() : nullptr;
    if (!lease) {
        if (problem.isEmpty())
            problem = ApplyTexts::tr("The session of this tab is in use. Try again when it is free.");
        return KNAlerts::shared().showMessage(parent, ApplyTexts::tr("The changes were not applied."),
                                              problem);
    }
    const auto application = std::make_shared<KNRowApplication>(
        editing.session().connection(), lease, editing.session().database, changes, editing.statements());
    const KNStatementPair script = KNRowChange::script(changes);
    const bool prefersCorrected = editing.statements()->prefersCorrected();
    editing.setApplying(true);
    if (KNPreferences::current().previewsRowChanges || (!prefersCorrected && script.differs()))
        showPreview(parent, editing, script, application);
    else
        runWithoutPreview(parent, editing, script.preferred(prefersCorrected), application);
}
