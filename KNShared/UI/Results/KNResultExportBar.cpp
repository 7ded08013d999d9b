#include "UI/Results/KNResultExportBar.h"

#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/Results/KNExportDialog.h"

#include <QBoxLayout>
#include <QFileInfo>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace {

constexpr int ProgressSteps = 1000;
constexpr int ProgressInterval = 100; // milliseconds

} // namespace

KNResultExportBar::KNResultExportBar(QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(this))
    , m_progress(new QProgressBar(this))
    , m_timer(new QTimer(this))
{
    m_progress->setRange(0, ProgressSteps);
    m_progress->setAccessibleName(tr("Progress of the export"));
    m_label->setTextFormat(Qt::PlainText);
    auto *const cancelButton = new QPushButton(tr("Cancel"), this);
    cancelButton->setAccessibleName(tr("Cancel the export"));
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_label);
    layout->addWidget(m_progress, 1);
    layout->addWidget(cancelButton);
    hide();
    m_timer->setInterval(ProgressInterval);
    connect(cancelButton, &QPushButton::clicked, this, &KNResultExportBar::cancel);
    connect(m_timer, &QTimer::timeout, this, [this] {
        const auto total = static_cast<double>(std::max<qsizetype>(1, m_exporter->rowCount()));
        m_progress->setValue(
            static_cast<int>(ProgressSteps * static_cast<double>(m_exporter->rowsWritten()) / total));
    });
}

KNResultExportBar::~KNResultExportBar()
{
    if (m_exporter)
        m_exporter->cancel();
}

void KNResultExportBar::exportRows(const ResultRows &rows, qsizetype hiddenColumns)
{
    if (m_exporter) {
        KNAlerts::shared().showMessage(this, tr("Export"),
                                       tr("Another export is being written. Cancel it or wait."));
        return;
    }
    auto *const dialog = new KNExportDialog(rows, hiddenColumns, parentWidget());
    dialog->beginSheet([self = QPointer(this), dialog, rows](int code) {
        if (!self || code == 0)
            return;
        dialog->remember();
        self->chooseFile(rows, dialog->extension(), dialog->csvOptions());
    });
}

void KNResultExportBar::chooseFile(const ResultRows &rows, const QString &extension, const CsvOptions &csv)
{
    const KNFilePanels::Request request = {tr("Export Rows"), KNFormat("result.%@", extension),
                                           ResultExporter::fileFilters(extension)};
    const QPointer<KNResultExportBar> self(this);
    KNFilePanels::shared().chooseFileToSave(window(), request, [self, rows, csv](const QString &path) {
        if (self && !self->m_exporter)
            self->start(rows, path, csv);
    });
}

void KNResultExportBar::start(const ResultRows &rows, const QString &path, const CsvOptions &csv)
{
    m_exporter = std::make_shared<ResultExporter>(rows, path, csv);
    m_path = path;
    m_label->setText(KNFormat(tr("Exporting to %@"), QFileInfo(path).fileName()));
    m_progress->setValue(0);
    m_timer->start();
    show();
    const QPointer<KNResultExportBar> self(this);
    m_exporter->start([self](bool complete, const KNError &error, const QStringList &remarks) {
        if (self)
            self->finish(complete, error, remarks);
    });
}

void KNResultExportBar::cancel()
{
    if (m_exporter)
        m_exporter->cancel();
}

void KNResultExportBar::finish(bool complete, const KNError &error, const QStringList &remarks)
{
    m_timer->stop();
    const qsizetype rows = m_exporter->rowCount();
    m_exporter = nullptr;
    hide();
    if (error)
        KNAlerts::shared().showError(window(), error);
    else if (complete)
        Q_EMIT written(rows, m_path, remarks);
}
