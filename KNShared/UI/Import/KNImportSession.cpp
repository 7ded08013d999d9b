#include "UI/Import/KNImportSession.h"

#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNDispatch.h"
#include "Import/KNExcelReader.h"

#include <QPointer>

#include <chrono>

KNImportSession::KNImportSession(Settings settings, QObject *parent)
    : QObject(parent)
    , m_settings(std::move(settings))
    , m_helper(m_settings->createDatabaseImportHelper())
    , m_analysisCancelled(std::make_shared<std::atomic<bool>>(false))
{
}

KNImportSession::~KNImportSession()
{
    *m_analysisCancelled = true;
    cancel();
}

void KNImportSession::analyse(const KNImportFile &file, quint64 mostRows)
{
    *m_analysisCancelled = true;
    const auto isCancelled = std::make_shared<std::atomic<bool>>(false);
    m_analysisCancelled = isCancelled;
    m_isAnalysing = true;
    KNDispatch::globalQueue([self = QPointer(this), file, mostRows, isCancelled] {
        const auto analysis =
            std::make_shared<KNImportFileAnalysis>(KNImportFileAnalysis::read(file, mostRows, *isCancelled));
        KNDispatch::mainQueue([self, file, analysis, isCancelled] {
            if (!self || *isCancelled)
                return;
            self->m_isAnalysing = false;
            self->m_analysis = *analysis;
            self->plan.file = file;
            self->plan.fileColumns = analysis->columnNames();
            Q_EMIT self->analysed();
        });
    });
}

void KNImportSession::readSheets(const QString &path)
{
    KNDispatch::globalQueue([self = QPointer(this), path] {
        KNError ignored; // reading the file reports it
        const QStringList sheets = KNExcelReader::sheets(path, &ignored);
        KNDispatch::mainQueue([self, sheets] {
            if (self)
                Q_EMIT self->sheetsRead(sheets);
        });
    });
}

void KNImportSession::loadTables()
{
    KNDispatch::globalQueue([self = QPointer(this), helper = m_helper] {
        const auto tables = helper->tablesForImportMapper();
        KNDispatch::mainQueue([self, tables] {
            if (!self)
                return;
            self->m_tables = tables;
            Q_EMIT self->tablesLoaded();
        });
    });
}

void KNImportSession::start(bool isDryRun)
{
    m_run = std::make_shared<KNImportRun>(plan);
    const auto lastReport = std::make_shared<std::chrono::steady_clock::time_point>();
    const auto report = [self = QPointer(this), lastReport](const KNImportRun::Progress &progress) {
        constexpr auto Interval = std::chrono::milliseconds(200);
        const auto now = std::chrono::steady_clock::now();
        if (now - *lastReport < Interval)
            return;
        *lastReport = now;
        KNDispatch::mainQueue([self, progress] {
            if (self && self->m_run)
                Q_EMIT self->progressed(progress);
        });
    };
    KNDispatch::globalQueue([self = QPointer(this), run = m_run, helper = m_helper, settings = m_settings,
                             report, isDryRun] {
        KNImportOutcome outcome;
        if (isDryRun) {
            outcome = run->dryRun(*helper, report);
        } else {
            KNError error;
            VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
                [&](VantorDatabaseClient &client, KNError *) { outcome = run->run(client, *helper, report); },
                *settings, &error);
            if (error)
                outcome.error = error;
        }
        KNDispatch::mainQueue([self, outcome] {
            if (!self)
                return;
            self->m_run.reset();
            Q_EMIT self->finished(outcome);
        });
    });
}

void KNImportSession::cancel()
{
    if (m_run)
        KNDispatch::globalQueue([run = m_run] { run->cancel(); });
}
