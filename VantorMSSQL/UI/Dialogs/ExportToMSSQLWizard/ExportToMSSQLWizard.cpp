#include "UI/Dialogs/ExportToMSSQLWizard/ExportToMSSQLWizard.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/Dialogs/ExportToMSSQLWizard/ExportProgressViewController.h"
#include "UI/Dialogs/ExportToMSSQLWizard/ExportSelectionModel.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QTreeView>
#include <QUuid>

#include <thread>

namespace {

constexpr QSize ExportWizardSize(520, 480);
enum ExportWizardPage { SelectionPage, ProgressPage };

} // namespace

ExportToMSSQLWizard::ExportToMSSQLWizard(const Settings &databaseConnectionDetails, QWidget *parent)
    : KNWindowController(parent)
    , m_details(databaseConnectionDetails)
    , m_model(new ExportSelectionModel(this))
    , m_display(new QLabel)
    , m_status(new QLabel)
    , m_outline(new QTreeView)
    , m_loading(new QProgressBar)
    , m_toFile(new QCheckBox(tr("Export to &file")))
    , m_compression(new QComboBox)
    , m_progress(new ExportProgressViewController)
    , m_pages(new QStackedWidget)
{
    setWindowTitle(tr("Export Database"));
    m_pages->addWidget(makeSelectionPage());
    m_pages->addWidget(m_progress);
    auto *const buttons = new QDialogButtonBox;
    m_cancel = buttons->addButton(QDialogButtonBox::Cancel);
    m_next = buttons->addButton(tr("&Next"), QDialogButtonBox::ActionRole);
    connect(m_next, &QPushButton::clicked, this, &ExportToMSSQLWizard::onNext);
    connect(m_cancel, &QPushButton::clicked, this, &ExportToMSSQLWizard::onCancel);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_display);
    layout->addWidget(m_pages, 1);
    layout->addWidget(buttons);
    m_cancel->setAutoDefault(false);
    m_next->setDefault(true); // once it belongs to the dialog
    resize(ExportWizardSize);
    updateServerDatabaseDisplay();
    loadDatabaseExportables();
}

ExportToMSSQLWizard::~ExportToMSSQLWizard() = default;

QWidget *ExportToMSSQLWizard::makeSelectionPage()
{
    m_outline->setModel(m_model);
    m_outline->setHeaderHidden(true);
    m_outline->setAccessibleName(tr("Objects to export"));
    m_loading->setRange(0, 0);
    m_loading->setAccessibleName(tr("Loading"));
    m_status->setTextFormat(Qt::PlainText);
    m_status->setWordWrap(true);
    m_compression->addItem(tr("No compression"), QStringLiteral("sql"));
    m_compression->addItem(tr("zip"), QStringLiteral("zip"));
    m_compression->addItem(tr("gzip"), QStringLiteral("gzip"));
    m_compression->setAccessibleName(tr("Compression"));
    m_toFile->setChecked(true);
    connect(m_toFile, &QCheckBox::toggled, m_compression, &QWidget::setEnabled);
    auto *const target = new QHBoxLayout;
    target->addWidget(m_toFile);
    target->addWidget(m_compression);
    target->addStretch();
    auto *const page = new QWidget;
    auto *const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_outline, 1);
    layout->addWidget(m_loading);
    layout->addWidget(m_status);
    layout->addLayout(target);
    return page;
}

void ExportToMSSQLWizard::updateServerDatabaseDisplay()
{
    m_display->setTextFormat(Qt::PlainText);
    m_display->setText(m_details->database().isEmpty()
                           ? tr("No database selected")
                           : KNFormat("%@ - %@", m_details->host(), m_details->database()));
}

void ExportToMSSQLWizard::loadDatabaseExportables()
{
    m_loading->show();
    for (QWidget *const control :
         std::initializer_list<QWidget *>{m_outline, m_toFile, m_compression, m_next})
        control->setEnabled(false);
    actualLoadEntries();
}

void ExportToMSSQLWizard::actualLoadEntries()
{
    KNDispatch::globalQueue([self = QPointer(this), details = m_details] {
        KNError error;
        const QList<ExportSelectableGroup> groups = ExportSelectableGroup::load(*details, &error);
        KNDispatch::mainQueue([self, groups, error] {
            if (self && !self->closed())
                self->showEntries(groups, error);
        });
    });
}

void ExportToMSSQLWizard::showEntries(const QList<ExportSelectableGroup> &groups, const KNError &error)
{
    m_model->setGroups(groups);
    m_outline->expandAll();
    m_loading->hide();
    m_status->setText(error ? KNFormat(tr("The objects could not be read. %@"), error.localizedDescription())
                            : QString());
    for (QWidget *const control : std::initializer_list<QWidget *>{m_outline, m_toFile, m_next})
        control->setEnabled(true);
    m_compression->setEnabled(m_toFile->isChecked());
}

void ExportToMSSQLWizard::onNext()
{
    if (m_model->selection().isEmpty()) {
        KNAlerts::shared().ask(this,
                               {tr("Nothing to export"),
                                tr("In order to continue, you must pick the entries to export."),
                                {tr("OK")}},
                               [](int) {});
        return;
    }
    if (!m_toFile->isChecked()) {
        startExport(QDir::temp().filePath(
            KNFormat("Export-%@.sql", QUuid::createUuid().toString(QUuid::WithoutBraces))));
        return;
    }
    const QString extension = m_compression->currentData().toString();
    KNFilePanels::shared().chooseFileToSave(this,
                                            {tr("Pick a file for export"),
                                             KNFormat("untitled.%@", extension),
                                             {KNFormat(tr("Export (*.%@)"), extension)}},
                                            [self = QPointer(this)](const QString &path) {
                                                if (self && !self->closed())
                                                    self->startExport(path);
                                            });
}

void ExportToMSSQLWizard::onCancel()
{
    if (page() == ProgressPage)
        m_progress->cancel();
    else
        endSheetWithReturnCode(0);
}

int ExportToMSSQLWizard::page() const
{
    return m_pages->currentIndex();
}

void ExportToMSSQLWizard::startExport(const QString &targetPath)
{
    constexpr int Steps = 100;
    m_targetPath = targetPath;
    m_progress->setLabelString(tr("Finding tables"));
    m_pages->setCurrentIndex(ProgressPage);
    m_next->hide();
    m_cancel->hide();
    KNDispatch::globalQueue([self = QPointer(this), cancelled = m_progress->cancelled(), pause = m_stepTime] {
        for (int i = 0; i < Steps && !*cancelled; ++i) {
            KNDispatch::mainQueue([self, i] {
                if (!self)
                    return;
                self->m_progress->setLabelString(KNFormat(tr("Finding tables %ld of 100"), i));
                self->m_progress->setPercentage(i);
            });
            std::this_thread::sleep_for(pause);
        }
        KNDispatch::mainQueue([self, cancelled] {
            if (self && !self->closed())
                self->endSheetWithReturnCode(*cancelled ? 0 : Finished);
        });
    });
}
