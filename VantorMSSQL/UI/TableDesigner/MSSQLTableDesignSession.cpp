#include "UI/TableDesigner/MSSQLTableDesignSession.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "TableDesign/MSSQLTableDesign.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Workspace/KNStatementChoice.h"

#include <QPointer>
#include <QWidget>

MSSQLTableDesignSession::MSSQLTableDesignSession(const MSSQLDesignedTable &table, Settings settings,
                                                 QWidget *window)
    : QObject(window)
    , m_table(table)
    , m_settings(std::move(settings))
    , m_window(window)
{
}

MSSQLTableDesignSession::~MSSQLTableDesignSession() = default;

void MSSQLTableDesignSession::setTableName(const QString &name)
{
    m_table.name = name;
    Q_EMIT renamed();
}

void MSSQLTableDesignSession::setBusy(bool isBusy, const QString &status)
{
    m_isBusy = isBusy;
    m_status = status;
    Q_EMIT busyChanged();
}

void MSSQLTableDesignSession::run(const Change &change, Finished finished)
{
    if (m_isBusy)
        return;
    setBusy(true, change.status);
    const QPointer self(this);
    KNDispatch::globalQueue([self, change, finished, table = m_table, settings = m_settings] {
        const KNStatementPair pair = change.statement(MSSQLTableDesign::withDefaultSchema(table, *settings));
        KNDispatch::mainQueue([self, pair, change, finished] {
            if (!self)
                return;
            self->setBusy(false);
            self->choose(pair, change, finished);
        });
    });
}

void MSSQLTableDesignSession::choose(const KNStatementPair &pair, const Change &change,
                                     const Finished &finished)
{
    if (pair.exact.isNull()) {
        KNLogHelper::sharedInstance()->logMessage("No alterTableQuery generated. Not making any changes.");
        return;
    }
    const auto use = [self = QPointer(this), change, finished](const QString &script) {
        if (self)
            self->execute(script, change, finished);
    };
    const bool prefersCorrected = MSSQLCorrectedStatements::areUsed();
    if (!pair.corrected.isNull())
        return KNChooseStatement(m_window, pair, prefersCorrected, use, change.removes);
    if (prefersCorrected)
        return KNAlerts::shared().showMessage(m_window, MSSQLTableDesign::noStatement(), pair.difference);
    KNAlerts::shared().ask(
        m_window,
        {pair.difference, KNFormat(tr("Statement:\n%@"), pair.exact), {tr("Cancel"), tr("Run Unchanged")}},
        [use, script = pair.exact](int button) {
            if (button == 1)
                use(script);
        });
}

void MSSQLTableDesignSession::execute(const QString &script, const Change &change, const Finished &finished)
{
    if (m_isBusy)
        return;
    setBusy(true, change.status);
    KNLogHelper::sharedInstance()->logMessage("Alter query: %@", script);
    m_run = KNStatementRun::start({script, change.usesTransaction, change.errorDomain}, *m_settings, this,
                                  [this, script, change, finished](const KNStatementOutcome &outcome) {
                                      finish(outcome, script, change, finished);
                                  });
}

void MSSQLTableDesignSession::finish(const KNStatementOutcome &outcome, const QString &script,
                                     const Change &change, const Finished &finished)
{
    m_run.reset();
    setBusy(false);
    if (outcome.succeeded()) {
        m_executed.append(script);
    } else if (!outcome.wasCancelled) {
        QVariantMap details = change.details;
        details.insert(QStringLiteral("Query"), script);
        KNLogHelper::sharedInstance()->logError(outcome.error, details);
        KNAlerts::shared().showMessage(
            m_window, tr("The table was not changed."),
            KNFormat(change.errorText, outcome.error.localizedDescription(), script));
    }
    Q_EMIT tableChanged();
    if (finished)
        finished(outcome.succeeded());
}

void MSSQLTableDesignSession::cancel()
{
    if (m_run)
        m_run->cancel();
}

void MSSQLTableDesignSession::preview(QWidget *parent, const KNQueryPreview::Titles &titles,
                                      const KNQueryLoaderPtr &statements, const QString &errorDomain,
                                      std::function<void()> applied)
{
    KNQueryPreview *const preview = KNQueryPreview::createQueryPreviewViewContoller(parent, *m_settings);
    preview->setTitle(titles.title, titles.information, titles.acceptTitle, titles.progressTitle);
    preview->setRemoves(titles.removes);
    preview->setQueryLoader(statements);
    preview->setUseTransaction(true);
    preview->setErrorDomain(errorDomain);
    preview->setReportErrorBlock([](const KNError &error) {
        const QString query = QStringLiteral("Query");
        KNLogHelper::sharedInstance()->logError(error, {{query, error.userInfo().value(query)}});
    });
    preview->beginSheet(
        [self = QPointer(this), preview, applied = std::move(applied)](KNQueryPreview::Changes changes) {
            const bool hasSucceeded = changes == KNQueryPreview::Changes::All;
            if (!self || changes == KNQueryPreview::Changes::None)
                return;
            if (hasSucceeded)
                self->m_executed.append(preview->acceptedStatements());
            Q_EMIT self->tableChanged();
            if (hasSucceeded && applied)
                applied();
        });
}
