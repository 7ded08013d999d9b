#include "UI/Workspace/KNQueryPreview.h"

#include "QueryLoader/KNQueryLoading.h"
#include "UI/Workspace/KNQueryPreviewSheet.h"

#include <QPointer>

namespace {

KNQueryPreview::Factory &previewFactory()
{
    static KNQueryPreview::Factory factory;
    return factory;
}

} // namespace

KNQueryPreview *KNQueryPreview::createQueryPreviewViewContoller(QWidget *parent, const VantorDBC &details)
{
    return previewFactory() ? previewFactory()(parent, details) : new KNQueryPreviewSheet(parent, details);
}

void KNQueryPreview::setFactory(Factory factory)
{
    previewFactory() = std::move(factory);
}

KNQueryPreview::KNQueryPreview(QObject *parent, const VantorDBC &details)
    : QObject(parent)
    , m_details(details.copy())
{
}

KNQueryPreview::~KNQueryPreview() = default;

void KNQueryPreview::setTitle(const QString &title, const QString &information, const QString &acceptTitle,
                              const QString &progressTitle)
{
    m_titles = {title, information, acceptTitle, progressTitle, m_titles.removes};
}

void KNQueryPreview::setReportErrorBlock(std::function<void(const KNError &error)> report)
{
    m_reportError = std::move(report);
}

void KNQueryPreview::beginSheet(std::function<void(Changes changes)> ended)
{
    m_ended = std::move(ended);
    showSheet();
    KNQueryLoading::load(
        m_loader, *m_details, [self = QPointer(this)](const QString &text, const KNQueryReport &report) {
            if (self)
                self->showStatements(report.failure ? report.guardedText(text) : text, report);
        });
}

void KNQueryPreview::accept(const QString &statements)
{
    if (m_run)
        return;
    m_accepted = statements;
    m_run = KNStatementRun::start(
        {statements, m_usesTransaction, m_errorDomain, m_session}, *m_details, this,
        [this](const KNStatementOutcome &outcome) { finish(outcome); },
        [this](int done, int total) { showProgress(done, total); });
    showRunning(true);
}

void KNQueryPreview::cancel()
{
    if (m_run)
        m_run->cancel();
    else
        end();
}

void KNQueryPreview::finish(const KNStatementOutcome &outcome)
{
    m_run.reset();
    m_outcome = outcome;
    if (outcome.changes != Changes::None)
        m_changes = outcome.changes;
    if (outcome.succeeded()) {
        end();
        return;
    }
    showRunning(false);
    showOutcome(outcome);
    if (outcome.error && m_reportError)
        m_reportError(outcome.error);
}

void KNQueryPreview::end()
{
    const auto ended = std::exchange(m_ended, nullptr);
    closeSheet();
    deleteLater();
    if (ended)
        ended(m_changes);
}
