#include "UI/Import/KNImportWindowController.h"

#include "Foundation/KNFormat.h"
#include "UI/Import/KNImportFilePage.h"
#include "UI/Import/KNImportOptionsPage.h"
#include "UI/Import/KNImportProgressPage.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>

namespace {

constexpr QSize InitialWizardSize(760, 560);

} // namespace

KNImportWindowController::KNImportWindowController(const Settings &settings, const Start &start,
                                                   KNImportTargetPage::CreateTable createTable,
                                                   QWidget *parent)
    : KNWindowController(parent)
    , m_session(new KNImportSession(settings, this))
    , m_filePage(new KNImportFilePage(*m_session, start.path))
    , m_targetPage(new KNImportTargetPage(*m_session, start.table, std::move(createTable)))
    , m_optionsPage(new KNImportOptionsPage(*m_session))
    , m_progressPage(new KNImportProgressPage(*m_session))
    , m_pages(new QStackedWidget)
    , m_title(new QLabel)
{
    setWindowTitle(settings->database().isEmpty() ? tr("Import")
                                                  : KNFormat(tr("Import into %@"), settings->database()));
    for (KNImportPage *const added :
         {static_cast<KNImportPage *>(m_filePage), static_cast<KNImportPage *>(m_targetPage),
          static_cast<KNImportPage *>(m_optionsPage), static_cast<KNImportPage *>(m_progressPage)}) {
        m_pages->addWidget(added);
        connect(added, &KNImportPage::completeChanged, this, &KNImportWindowController::update);
    }
    arrange();
    connect(m_session, &KNImportSession::analysed, this, &KNImportWindowController::update);
    connect(m_session, &KNImportSession::finished, this, &KNImportWindowController::finish);
    showPage(0);
}

KNImportWindowController::~KNImportWindowController() = default;

void KNImportWindowController::arrange()
{
    QFont titleFont = font();
    titleFont.setBold(true);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.2);
    m_title->setFont(titleFont);
    m_title->setTextFormat(Qt::PlainText);
    auto *const buttons = new QDialogButtonBox(this);
    m_cancel = buttons->addButton(QDialogButtonBox::Cancel);
    m_back = buttons->addButton(tr("&Back"), QDialogButtonBox::ActionRole);
    m_dryRun = buttons->addButton(tr("Dr&y Run"), QDialogButtonBox::ActionRole);
    m_next = buttons->addButton(tr("&Next"), QDialogButtonBox::ActionRole);
    for (QPushButton *const button : {m_cancel, m_back, m_dryRun})
        button->setAutoDefault(false);
    m_dryRun->setToolTip(tr("Convert all values and list the faults, without changing the table"));
    m_next->setDefault(true);
    connect(m_cancel, &QPushButton::clicked, this, &KNImportWindowController::reject);
    connect(m_back, &QPushButton::clicked, this, &KNImportWindowController::goBack);
    connect(m_dryRun, &QPushButton::clicked, this, &KNImportWindowController::runDry);
    connect(m_next, &QPushButton::clicked, this, &KNImportWindowController::goOn);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_title);
    layout->addWidget(m_pages, 1);
    layout->addWidget(buttons);
    resize(InitialWizardSize);
}

KNImportPage *KNImportWindowController::page() const
{
    return static_cast<KNImportPage *>(m_pages->currentWidget());
}

int KNImportWindowController::currentPage() const
{
    return m_pages->currentIndex();
}

void KNImportWindowController::showPage(int index)
{
    m_pages->setCurrentIndex(index);
    page()->enter();
    if (page()->focusProxy())
        page()->setFocus();
    update();
}

void KNImportWindowController::goBack()
{
    if (currentPage() > 0 && !m_session->isRunning())
        showPage(currentPage() - 1);
}

void KNImportWindowController::goOn()
{
    if (page() == m_progressPage)
        return m_isDryRun ? begin(false) : endSheetWithReturnCode(m_hasImported ? 1 : 0);
    if (!page()->isComplete())
        return;
    if (page() == m_optionsPage)
        return begin(false);
    page()->apply();
    showPage(currentPage() + 1);
}

void KNImportWindowController::runDry()
{
    if (page() == m_optionsPage && page()->isComplete())
        begin(true);
}

void KNImportWindowController::begin(bool isDryRun)
{
    if (m_session->isRunning())
        return;
    m_optionsPage->apply();
    if (isDryRun)
        m_session->plan.faultFile = QString();
    m_isDryRun = isDryRun;
    m_progressPage->start(isDryRun);
    showPage(m_pages->indexOf(m_progressPage));
}

void KNImportWindowController::finish(const KNImportOutcome &outcome)
{
    m_hasImported = m_hasImported || (!m_isDryRun && outcome.succeeded());
    update();
}

void KNImportWindowController::reject()
{
    if (m_session->isRunning())
        m_session->cancel();
    else
        endSheetWithReturnCode(m_hasImported ? 1 : 0);
}

void KNImportWindowController::update()
{
    const bool isRunning = m_session->isRunning();
    const bool isLast = page() == m_progressPage;
    const bool isBeforeImport = page() == m_optionsPage || (isLast && m_isDryRun);
    m_title->setText(page()->title());
    m_back->setVisible(currentPage() > 0 && !m_hasImported);
    m_back->setEnabled(!isRunning);
    m_dryRun->setVisible(page() == m_optionsPage);
    m_dryRun->setEnabled(page()->isComplete());
    m_next->setText(isBeforeImport ? tr("&Import") : isLast ? tr("&Close") : tr("&Next"));
    m_next->setEnabled(page()->isComplete() && !isRunning);
    m_cancel->setVisible(!(isLast && !isRunning && !m_isDryRun));
}
