#include "UI/Import/KNImportProgressPage.h"

#include "Foundation/KNFormat.h"
#include "UI/Import/KNImportTextModel.h"
#include "UI/Results/KNCountText.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QTableView>

namespace {

constexpr int ProgressSteps = 1000;

QString countOf(quint64 count)
{
    return KNCountText(static_cast<qsizetype>(count));
}

QString rowsOf(quint64 count)
{
    return count == 1 ? KNImportProgressPage::tr("1 row")
                      : KNFormat(KNImportProgressPage::tr("%@ rows"), countOf(count));
}

} // namespace

KNImportProgressPage::KNImportProgressPage(KNImportSession &session, QWidget *parent)
    : KNImportPage(session, parent)
    , m_progress(new QProgressBar)
    , m_status(new QLabel)
    , m_faultModel(new KNImportTextModel(this))
    , m_faults(new QTableView)
{
    m_progress->setRange(0, ProgressSteps);
    m_progress->setTextVisible(false);
    m_progress->setAccessibleName(tr("Progress"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_faults->setModel(m_faultModel);
    m_faults->setAccessibleName(tr("Faults"));
    m_faults->setTabKeyNavigation(false);
    m_faults->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_faults->verticalHeader()->hide();
    m_faults->horizontalHeader()->setStretchLastSection(true);
    m_faults->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_progress);
    layout->addWidget(m_status);
    layout->addWidget(m_faults, 1);
    layout->addStretch();
    connect(&session, &KNImportSession::progressed, this, &KNImportProgressPage::showProgress);
    connect(&session, &KNImportSession::finished, this, &KNImportProgressPage::showOutcome);
}

QString KNImportProgressPage::title() const
{
    return m_isDryRun ? tr("Dry Run") : tr("Import");
}

QString KNImportProgressPage::status() const
{
    return m_status->text();
}

void KNImportProgressPage::start(bool isDryRun)
{
    m_isDryRun = isDryRun;
    m_start = Clock::now();
    m_progress->setValue(0);
    m_progress->show();
    m_faults->hide();
    m_status->setText(isDryRun ? tr("Converting the values…") : tr("Importing…"));
    session().start(isDryRun);
}

void KNImportProgressPage::showProgress(const KNImportRun::Progress &progress)
{
    const double seconds = std::chrono::duration<double>(Clock::now() - m_start).count();
    m_progress->setValue(static_cast<int>(progress.fraction * ProgressSteps));
    const auto rate = static_cast<quint64>(seconds > 0 ? double(progress.rows) / seconds : 0);
    const double left = progress.fraction > 0 ? seconds / progress.fraction - seconds : 0;
    QString text = KNFormat(tr("%@, %@ rows per second, about %d s left"), rowsOf(progress.rows),
                            countOf(rate), static_cast<int>(left + 0.5));
    if (progress.faults > 0)
        text += KNFormat(tr(", %@ faults"), countOf(progress.faults));
    m_status->setText(text);
}

QString KNImportProgressPage::outcomeText(const KNImportOutcome &outcome) const
{
    if (outcome.wasCancelled)
        return tr("Cancelled. Nothing was imported.");
    if (outcome.error)
        return outcome.error.descriptionWithSuggestion();
    if (m_isDryRun)
        return KNFormat(tr("%@ can be imported, %@ cannot. Nothing was changed."), rowsOf(outcome.rows),
                        rowsOf(outcome.faultCount));
    QString text = KNFormat(tr("%@ imported."), rowsOf(outcome.rows));
    if (outcome.faultCount > 0)
        text += QLatin1Char('\n') + KNFormat(tr("%@ refused, written into \"%@\"."),
                                             rowsOf(outcome.faultCount), session().plan.faultFile);
    return text;
}

void KNImportProgressPage::showOutcome(const KNImportOutcome &outcome)
{
    m_progress->hide();
    QString text = outcomeText(outcome);
    if (outcome.faultCount > static_cast<quint64>(outcome.faults.size()))
        text += QLatin1Char('\n') + KNFormat(tr("The first %@ faults are listed."),
                                             countOf(static_cast<quint64>(outcome.faults.size())));
    m_status->setText(text);
    QList<QStringList> rows;
    for (const KNImportFault &fault : outcome.faults)
        rows.append({QString::number(fault.line), fault.column.isNull() ? QStringLiteral("") : fault.column,
                     fault.column.isNull() ? QStringLiteral("") : fault.value, fault.reason});
    m_faultModel->setTexts({tr("Line"), tr("Column"), tr("Value"), tr("Reason")}, rows);
    m_faults->resizeColumnsToContents();
    m_faults->setVisible(!rows.isEmpty());
}
