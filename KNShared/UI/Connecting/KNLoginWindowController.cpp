#include "UI/Connecting/KNLoginWindowController.h"

#include "Foundation/KNFormat.h"
#include "UI/Connecting/KNConnectionAttempt.h"
#include "UI/Dialogs/KNPasswordField.h"
#include "UI/Dialogs/KNProgressMark.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QString accountOf(const VantorDBC &details)
{
    return KNFormat(KNLoginWindowController::tr("%@ at %@"), details.username(), details.host());
}

} // namespace

KNLoginWindowController::KNLoginWindowController(const VantorDBC &details, bool asksFirst, QWidget *parent)
    : KNWindowController(parent)
    , m_details(details.copy())
    , m_label(new QLabel)
    , m_password(new KNPasswordField)
    , m_problem(new QLabel)
    , m_progress(new KNProgressMark(tr("Connecting")))
{
    setWindowTitle(tr("Connect"));
    layOut();
    m_password->setText(details.password());
    if (asksFirst)
        showAttempt(false);
    else
        connectToServer();
}

KNLoginWindowController::~KNLoginWindowController() = default;

void KNLoginWindowController::layOut()
{
    m_label->setTextFormat(Qt::PlainText);
    m_label->setBuddy(m_password);
    m_password->setAccessibleName(tr("Password"));
    m_password->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    m_problem->setTextFormat(Qt::PlainText);
    m_problem->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_problem->setWordWrap(true);
    m_problem->setAccessibleName(tr("Why the login failed"));
    m_problem->hide();
    auto *const buttons = new QDialogButtonBox;
    buttons->addButton(QDialogButtonBox::Cancel)->setAutoDefault(false);
    m_accept = buttons->addButton(tr("Connect"), QDialogButtonBox::AcceptRole);
    m_accept->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { endSheetWithReturnCode(0); });
    connect(m_accept, &QPushButton::clicked, this, &KNLoginWindowController::connectToServer);
    auto *const row = new QHBoxLayout;
    row->addWidget(m_progress);
    row->addStretch();
    row->addWidget(buttons);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_problem);
    layout->addWidget(m_label);
    layout->addWidget(m_password);
    layout->addLayout(row);
}

QString KNLoginWindowController::problem() const
{
    return m_problem->text();
}

void KNLoginWindowController::connectToServer()
{
    m_details->setPassword(m_password->text());
    m_attempt = new KNConnectionAttempt(m_details, this);
    connect(m_attempt, &KNConnectionAttempt::succeeded, this, [this] { endSheetWithReturnCode(1); });
    connect(m_attempt, &KNConnectionAttempt::failed, this, &KNLoginWindowController::attemptFailed);
    showAttempt(true);
    m_attempt->start();
}

void KNLoginWindowController::attemptFailed(const KNError &error)
{
    m_attempt->deleteLater();
    m_attempt = nullptr;
    m_problem->setText(error.descriptionWithSuggestion());
    m_accept->setText(tr("&Try Again"));
    showAttempt(false);
    m_password->selectAll();
}

/// The password can be changed while no attempt runs.
void KNLoginWindowController::showAttempt(bool isRunning)
{
    const QString account = accountOf(*m_details).replace(u'&', QStringLiteral("&&"));
    m_label->setText(KNFormat(isRunning ? tr("Connecting to %@…") : tr("&Password of %@:"), account));
    m_problem->setVisible(!isRunning && !m_problem->text().isEmpty());
    m_password->setVisible(!isRunning);
    m_accept->setEnabled(!isRunning);
    if (isRunning) {
        m_progress->start();
    } else {
        m_progress->stop();
        m_password->setFocus();
    }
    adjustSize();
}
