#include "UI/Activity/KNActivityTab.h"

#include "Database/VantorDBC.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Activity/KNActivityView.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Dialogs/KNCautionBar.h"
#include "UI/KNPreferences.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>

KNActivityTab::KNActivityTab(Settings details, std::shared_ptr<const KNServerActivity> activity,
                             QWidget *parent)
    : KNDocumentTab(parent)
    , m_details(std::move(details))
    , m_activity(std::move(activity))
    , m_view(new KNActivityView(this))
    , m_statement(new QPlainTextEdit(this))
    , m_interval(new QComboBox(this))
    , m_kill(new QPushButton(tr("&Kill Session…"), this))
    , m_remark(new KNCautionBar(this))
    , m_summary(new QLabel(this))
{
    arrange();
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (isVisible())
            refresh();
    });
    connect(m_interval, &QComboBox::currentIndexChanged, this, &KNActivityTab::schedule);
    connect(m_kill, &QPushButton::clicked, this, &KNActivityTab::killSession);
    connect(m_view, &KNActivityView::currentSessionChanged, this, &KNActivityTab::showSelection);
    showSelection();
}

void KNActivityTab::arrange()
{
    m_interval->setAccessibleName(tr("Refresh"));
    m_interval->addItem(tr("Never"), 0);
    for (const int seconds : {2, 5, 10, 30, 60})
        m_interval->addItem(KNFormat(tr("Every %d s"), seconds), seconds);
    m_interval->setCurrentIndex(m_interval->findData(5));
    m_statement->setReadOnly(true);
    m_statement->setAccessibleName(tr("Statement of the selected session"));
    m_statement->setPlaceholderText(tr("The statement of the selected session"));
    m_statement->setFont(KNPreferences::current().editorFont);
    m_statement->setTabChangesFocus(true);
    m_summary->setTextFormat(Qt::PlainText);
    m_kill->setAutoDefault(false);
    auto *const refreshNow = new QPushButton(tr("&Refresh"), this);
    refreshNow->setAutoDefault(false);
    connect(refreshNow, &QPushButton::clicked, this, &KNActivityTab::refresh);

    auto *const head = new QHBoxLayout;
    head->setContentsMargins(6, 6, 6, 0);
    head->addWidget(refreshNow);
    head->addWidget(m_interval);
    head->addWidget(m_summary, 1);
    head->addWidget(m_kill);
    auto *const splitter = new QSplitter(Qt::Vertical, this);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(m_view);
    splitter->addWidget(m_statement);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(head);
    layout->addWidget(m_remark);
    layout->addWidget(splitter, 1);
    setFocusProxy(m_view);
}

QString KNActivityTab::title() const
{
    return tr("Activity");
}

QString KNActivityTab::statement() const
{
    return m_statement->toPlainText();
}

QString KNActivityTab::remark() const
{
    return m_remark->text();
}

void KNActivityTab::showEvent(QShowEvent *event)
{
    KNDocumentTab::showEvent(event);
    refresh();
}

void KNActivityTab::refresh()
{
    if (m_isReading)
        return;
    m_isReading = true;
    m_timer.stop();
    KNDispatch::globalQueue([self = QPointer(this), activity = m_activity] {
        KNError error;
        const KNActivitySnapshot snapshot = activity->read(&error);
        KNDispatch::mainQueue([self, snapshot, error] {
            if (self)
                self->showSnapshot(snapshot, error);
        });
    });
}

/// After an error the sessions of the last reading stay.
void KNActivityTab::showSnapshot(const KNActivitySnapshot &snapshot, const KNError &error)
{
    m_isReading = false;
    m_remark->setText(error ? error.localizedDescription() : snapshot.remark);
    if (!error) {
        m_view->setSessions(snapshot.sessions);
        m_summary->setText(m_view->summary());
        showSelection();
    }
    schedule();
}

/// A hidden document reads nothing; showing it refreshes it.
void KNActivityTab::schedule()
{
    const int seconds = m_interval->currentData().toInt();
    if (seconds > 0 && !m_isReading)
        m_timer.start(seconds * 1000);
    else
        m_timer.stop();
}

void KNActivityTab::showSelection()
{
    const std::optional<KNActivitySession> session = m_view->currentSession();
    const QString statement = session ? session->statement : QString();
    if (m_statement->toPlainText() != statement) // keeps the selection and the scroll position
        m_statement->setPlainText(statement);
    m_kill->setEnabled(session && !session->isOwn);
}

void KNActivityTab::killSession()
{
    const std::optional<KNActivitySession> session = m_view->currentSession();
    if (!session || session->isOwn)
        return;
    const KNAlerts::Question question{
        KNFormat(tr("Kill session %d?"), session->id),
        KNFormat(tr("%@ from %@ (%@) is disconnected. The server rolls back what this session has not "
                    "committed."),
                 session->login, session->host.isEmpty() ? tr("an unknown host") : session->host,
                 session->program.isEmpty() ? tr("an unknown program") : session->program),
        {tr("Cancel"), tr("Kill")}};
    KNAlerts::shared().ask(this, question, [self = QPointer(this), session = *session](int button) {
        if (self && button == 1)
            self->kill(session);
    });
}

void KNActivityTab::kill(const KNActivitySession &session)
{
    KNDispatch::globalQueue([self = QPointer(this), activity = m_activity, id = session.id] {
        KNError error;
        activity->kill(id, &error);
        KNDispatch::mainQueue([self, error] {
            if (!self)
                return;
            if (error)
                KNAlerts::shared().showError(self, error);
            self->refresh();
        });
    });
}
