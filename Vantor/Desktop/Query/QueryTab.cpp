#include "Desktop/Query/QueryTab.h"

#include "Database/KNMessageText.h"
#include "Desktop/Query/ClosePrompts.h"
#include "Desktop/Query/DatabaseBox.h"
#include "Desktop/Query/EditorActions.h"
#include "Desktop/Query/EditorCommands.h"
#include "Desktop/Query/ErrorMarks.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryBatches.h"
#include "Desktop/Query/QueryDocument.h"
#include "Desktop/Query/QueryResults.h"
#include "Desktop/Query/QueryRun.h"
#include "Desktop/Query/QuerySession.h"
#include "Desktop/Query/RiskyRunQuestion.h"
#include "Desktop/Query/SyntaxCheck.h"
#include "Desktop/Query/TransactionBar.h"
#include "Foundation/KNFormat.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Completion/KNEditorCompletion.h"
#include "UI/Completion/KNEditorSignature.h"
#include "UI/Dialogs/KNCautionBar.h"
#include "UI/Editor/KNFindBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "UI/Names/KNEditorHover.h"
#include "UI/Results/KNResultsPane.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QSplitter>
#include <QUuid>

namespace {

constexpr int ClockInterval = 100; // milliseconds

} // namespace

const QString QueryTab::Kind = QStringLiteral("query");

QueryTab::QueryTab(const VantorDBC &details, QWidget *parent)
    : KNDocumentTab(parent)
    , m_editor(new KNSQLEditor)
    , m_document(new QueryDocument(m_editor))
    , m_findBar(new KNFindBar(m_editor))
    , m_databaseBox(new DatabaseBox)
    , m_transactionBar(new TransactionBar)
    , m_lossBar(new KNCautionBar)
    , m_results(new QueryResults)
    , m_errorMarks(new ErrorMarks(m_editor, m_results->messages(), this))
    , m_clock(new QTimer(this))
    , m_session(std::make_unique<QuerySession>(details))
    , m_id(QUuid::createUuid().toString(QUuid::WithoutBraces))
{
    m_editor->setDialect(details.tokenizerOptions(), details.keywords(), details.functions(),
                         details.dataTypes());
    arrange();
    connectParts();
    m_databaseBox->setConnectionDetails(details);
    showDatabase(details.database());
    const auto settings = [this] { return databaseConnectionDetails(); };
    const auto language = KNEditorLanguage::create(m_editor, settings);
    m_signature = new KNEditorSignature(m_editor, language);
    m_completion = new KNEditorCompletion(m_editor, language);
    m_syntaxCheck = new SyntaxCheck(m_editor, m_results, m_errorMarks, settings, this);
    if (language) {
        m_commands = new EditorCommands(language);
        new KNEditorHover(language);
    }
}

QueryTab::~QueryTab()
{
    m_run.reset();
}

void QueryTab::arrange()
{
    auto *const databaseLabel = new QLabel(tr("&Database:"));
    databaseLabel->setBuddy(m_databaseBox);
    auto *const top = new QHBoxLayout;
    top->setContentsMargins(6, 4, 6, 4);
    top->setSpacing(6);
    top->addWidget(databaseLabel);
    top->addWidget(m_databaseBox);
    top->addStretch(1);
    top->addWidget(m_transactionBar);
    m_transactionBar->hide();

    auto *const editing = new QWidget;
    auto *const editingLayout = new QVBoxLayout(editing);
    editingLayout->setContentsMargins(0, 0, 0, 0);
    editingLayout->setSpacing(0);
    editingLayout->addWidget(m_editor, 1);
    editingLayout->addWidget(m_findBar);

    m_editor->setFrameShape(QFrame::NoFrame);

    auto *const splitter = new QSplitter(Qt::Vertical);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(editing);
    splitter->addWidget(m_results);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addWidget(m_lossBar);
    layout->addWidget(splitter, 1);
    setFocusProxy(m_editor);
    setTabOrder(m_databaseBox, m_editor);
}

void QueryTab::connectParts()
{
    m_clock->setInterval(ClockInterval);
    connect(m_clock, &QTimer::timeout, this, &QueryTab::statusChanged);
    connect(m_document, &QueryDocument::titleChanged, this, &QueryTab::titleChanged);
    connect(m_document, &QueryDocument::titleChanged, this, &QueryTab::stateChanged);
    connect(m_editor, &KNSQLEditor::textChanged, this, &QueryTab::stateChanged);
    connect(m_editor, &KNSQLEditor::cursorPositionChanged, this, &QueryTab::stateChanged);
    connect(m_editor, &KNSQLEditor::cursorPositionChanged, this, &QueryTab::statusChanged);
    connect(m_document, &QueryDocument::pathChanged, this, &QueryTab::statusChanged);
    connect(m_session.get(), &QuerySession::stateChanged, this, &QueryTab::statusChanged);
    connect(m_session.get(), &QuerySession::databaseReached, this,
            [this](const QString &name) { showDatabase(name.isNull() ? m_database : name); });
    connect(m_session.get(), &QuerySession::succeeded, this,
            [this](const QString &text) { messages()->addText(text, false); });
    connect(m_session.get(), &QuerySession::failed, this,
            [this](const KNError &error) { KNAlerts::shared().showError(this, error); });
    connect(m_session.get(), &QuerySession::lost, this, &QueryTab::askAboutLostSession);
    connect(m_session.get(), &QuerySession::lostWhileIdle, this, &QueryTab::showIdleLoss);
    connect(m_session.get(), &QuerySession::stateChanged, this, [this] {
        if (m_session->isBusy())
            m_lossBar->setText({});
    });
    connect(m_transactionBar, &TransactionBar::commitRequested, this,
            [this] { perform(KNDocumentAction::Commit); });
    connect(m_transactionBar, &TransactionBar::rollbackRequested, this,
            [this] { perform(KNDocumentAction::Rollback); });
    connect(this, &QueryTab::statusChanged, this,
            [this] { m_transactionBar->setVisible(canPerform(KNDocumentAction::Commit)); });
    connect(messages(), &MessagesView::linkActivated, this, &QueryTab::runRemainingBatches);
    connect(m_databaseBox, &DatabaseBox::left, m_editor, qOverload<>(&KNSQLEditor::setFocus));
    connect(m_databaseBox, &DatabaseBox::databaseChosen, m_editor, qOverload<>(&KNSQLEditor::setFocus));
    connect(resultsPane(), &KNResultsPane::selectionSummaryChanged, this, &QueryTab::statusChanged);
    connect(m_databaseBox, &DatabaseBox::databaseChosen, this, &QueryTab::changeDatabase);
    connect(m_databaseBox, &DatabaseBox::loadFailed, this,
            [this](const KNError &error) { KNAlerts::shared().showError(this, error); });
}

KNResultsPane *QueryTab::resultsPane() const
{
    return m_results->pane();
}

MessagesView *QueryTab::messages() const
{
    return m_results->messages();
}

QString QueryTab::text() const
{
    return m_editor->wholeText();
}

void QueryTab::setText(const QString &text)
{
    m_editor->setWholeText(text);
}

QString QueryTab::textForCopy() const
{
    return text();
}

bool QueryTab::insertText(const QString &text)
{
    m_editor->insertText(text);
    return true;
}

bool QueryTab::openFile(const QString &path, KNError *error)
{
    return m_document->open(path, error);
}

QString QueryTab::filePath() const
{
    return m_document->filePath();
}

QString QueryTab::title() const
{
    return m_document->title();
}

void QueryTab::setUntitledName(const QString &name)
{
    m_document->setUntitledName(name);
}

bool QueryTab::isModified() const
{
    return m_document->isModified();
}

bool QueryTab::isUnused() const
{
    return filePath().isNull() && !isModified() && !isRunning() && m_editor->length() == 0;
}

void QueryTab::prepareToClose(std::function<void()> proceed)
{
    confirmEditLoss(*this, tr("Closing the tab discards them."), [this, proceed] {
        confirmSessionLoss(*this, [this, proceed] { confirmTextLoss(*this, proceed); });
    });
}

void QueryTab::prepareToEndSession(std::function<void()> proceed)
{
    if (KNPreferences::current().reopensTabs)
        confirmEditLoss(*this, tr("Closing the tab discards them."),
                        [this, proceed] { confirmSessionLoss(*this, proceed); });
    else
        prepareToClose(std::move(proceed));
}

std::shared_ptr<const VantorDBC> QueryTab::databaseConnectionDetails() const
{
    return m_session->connectionDetails();
}

bool QueryTab::isRunning() const
{
    return m_run && !m_run->isFinished();
}

KNDocumentStatus::Outcome QueryTab::outcome() const
{
    if (!m_run || !m_run->isFinished() || m_run->outcome().wasCancelled)
        return KNDocumentStatus::Outcome::None;
    return m_hadErrors ? KNDocumentStatus::Outcome::Failed : KNDocumentStatus::Outcome::Succeeded;
}

KNDocumentStatus QueryTab::status() const
{
    KNDocumentStatus status;
    status.selection = resultsPane()->selectionSummary();
    status.database = m_database;
    status.rowCount = m_run ? m_run->results()->totalResultCount() : 0;
    status.elapsedMilliseconds = m_run ? m_run->elapsedMilliseconds() : 0;
    status.outcome = outcome();
    status.line = m_editor->cursorLine();
    status.column = m_editor->cursorColumn();
    status.encoding = m_document->encodingName();
    status.lineEnds = m_editor->lineEndName();
    status.isRunning = isRunning();
    status.hasOpenTransaction = m_session->hasOpenTransaction();
    return status;
}

TabState QueryTab::state() const
{
    TabState state;
    state.id = m_id;
    state.untitledName = m_document->untitledName();
    state.filePath = filePath();
    state.isModified = isModified();
    if (state.isModified || state.filePath.isNull())
        state.text = text();
    state.cursor = m_editor->selectedRange().location;
    state.database = m_database;
    return state;
}

std::optional<KNDocumentState> QueryTab::savedState() const
{
    return state().documentState();
}

bool QueryTab::canPerform(KNDocumentAction action) const
{
    switch (action) {
    case KNDocumentAction::Execute:
    case KNDocumentAction::ExecuteBatch:
    case KNDocumentAction::Parse:
        return !isRunning();
    case KNDocumentAction::Cancel:
        return isRunning();
    case KNDocumentAction::Commit:
    case KNDocumentAction::Rollback:
        return m_session->hasOpenTransaction() && !isRunning() && !m_session->isBusy();
    case KNDocumentAction::Reconnect:
        return !isRunning() && !m_session->isBusy();
    default:
        return true;
    }
}

void QueryTab::perform(KNDocumentAction action)
{
    switch (action) {
    case KNDocumentAction::Execute:
        return run();
    case KNDocumentAction::ExecuteBatch:
        return runBatchAtCursor();
    case KNDocumentAction::Parse:
        return m_syntaxCheck->check();
    case KNDocumentAction::Cancel:
        return cancel();
    case KNDocumentAction::Commit:
    case KNDocumentAction::Rollback:
        m_editor->setFocus();
        return m_session->endTransaction(action == KNDocumentAction::Commit);
    case KNDocumentAction::Reconnect:
        return confirmReconnection(*this, [this] { m_session->reconnect(); });
    case KNDocumentAction::Save:
        return m_document->save();
    case KNDocumentAction::SaveAs:
        return m_document->saveAs();
    case KNDocumentAction::ChangeDatabase:
        m_databaseBox->setFocus(Qt::ShortcutFocusReason);
        return m_databaseBox->showPopup();
    case KNDocumentAction::ToggleResults:
        return toggleResults();
    case KNDocumentAction::ShowNextPane:
        return showNextPane();
    default:
        if (!(m_commands && m_commands->perform(action)) && !resultsPane()->perform(action))
            performEditorAction(action, *m_editor, *m_findBar);
    }
}

void QueryTab::restore(const TabState &state)
{
    m_id = state.id;
    m_document->setUntitledName(state.untitledName);
    m_document->restore(state.filePath, state.text, state.isModified);
    m_editor->selectRange({state.cursor, 0});
    if (state.database.isEmpty() || state.database == m_database)
        return;
    const VantorDBCPtr details = m_session->connectionDetails();
    details->setDatabase(state.database);
    m_session->replace(*details);
    m_databaseBox->setConnectionDetails(*details);
    showDatabase(state.database);
}

void QueryTab::run()
{
    QueryRequest request;
    request.range = m_editor->selectedRange();
    if (request.range.length > 0)
        request.part = QueryRequest::Part::Range;
    start(std::move(request));
}

void QueryTab::runBatchAtCursor()
{
    QueryRequest request;
    request.part = QueryRequest::Part::BatchAt;
    request.range = m_editor->selectedRange();
    start(std::move(request));
}

void QueryTab::runRemainingBatches()
{
    if (isRunning() || !m_run || m_run->outcome().notRun.isEmpty())
        return;
    QueryRequest request;
    request.part = QueryRequest::Part::Batches;
    request.batches = m_run->outcome().notRun;
    start(std::move(request));
}

/// Whether nothing can run now. Calls `next` once the session is free, unless a query is running.
bool QueryTab::isBlocked(const std::function<void()> &next)
{
    if (!isRunning() && m_session->isBusy())
        m_session->setNext(next);
    return isRunning() || m_session->isBusy();
}

void QueryTab::start(const QueryRequest &request)
{
    if (isBlocked([this, request] { start(request); }))
        return;
    confirmEditLoss(*this, tr("Running a query discards them."), [this, request] { startUnedited(request); });
}

void QueryTab::startUnedited(const QueryRequest &unedited)
{
    QueryRequest request = unedited;
    request.text = text();
    const KNPreferences preferences = KNPreferences::current();
    request.rowLimit = preferences.rowLimit;
    request.onError = preferences.continuesAfterError ? KNOnError::Continue : KNOnError::Stop;
    request.asksForTransaction = m_session->hasOpenTransaction();
    RiskyRunQuestion::ask(this, request, *m_session->connectionDetails(),
                          [this, request] { startConfirmed(request); });
}

void QueryTab::startConfirmed(QueryRequest request)
{
    if (isBlocked([this, request] { startConfirmed(request); }))
        return;
    if (request.part == QueryRequest::Part::Batches) // these keep their lines in the text of the run before
        m_errorMarks->continueRun();
    else
        m_errorMarks->beginRun();
    m_syntaxCheck->noteRun();
    m_lossBar->setText({});
    m_databaseBox->setEnabled(false);
    m_session->beginUse();
    m_run = std::make_unique<QueryRun>(m_session->connection(), std::move(request), nullptr);
    connect(m_run.get(), &QueryRun::resultsChanged, this, &QueryTab::showNewResults);
    connect(m_run.get(), &QueryRun::finished, this, &QueryTab::finishRun);
    m_results->beginRun(m_run->results(), *m_session->connectionDetails());
    m_runBegan = QDateTime::currentDateTimeUtc();
    m_run->start();
    m_clock->start();
    Q_EMIT statusChanged();
}

void QueryTab::cancel()
{
    if (isRunning())
        m_run->cancel();
}

void QueryTab::showNewResults()
{
    m_results->showNewResults();
    Q_EMIT statusChanged();
}

void QueryTab::finishRun()
{
    m_clock->stop();
    const QueryOutcome &outcome = m_run->outcome();
    if (!outcome.notice.isNull())
        messages()->addText(outcome.notice, false);
    if (m_run->isAbandoned())
        m_session->replace(*m_session->connectionDetails());
    m_session->endUse();
    m_results->finishRun(outcome.error);
    m_hadErrors = outcome.error || messages()->errorCount() > 0;
    m_databaseBox->setEnabled(true);
    if (!outcome.database.isNull())
        showDatabase(outcome.database);
    if (outcome.inTransaction)
        m_session->setHasOpenTransaction(*outcome.inTransaction);
    Q_EMIT statusChanged();
    if (!outcome.error && !outcome.wasCancelled)
        resultsPane()->beginEditing(m_session->editSession(outcome.database));
    showOutcome();
    const QueryRequest &request = m_run->request();
    m_completion->noteRun(textOf(request));
    if (VantorTabConnection::isSessionLost(outcome.error)) {
        askAboutLostSession(outcome.error, [this, request] { start(request); });
        return;
    }
    Q_EMIT runFinished({m_runBegan, textOf(request), m_database, m_run->elapsedMilliseconds(),
                        m_run->results()->totalResultCount(), messages()->firstError(),
                        outcome.wasCancelled});
}

void QueryTab::showOutcome()
{
    const QueryOutcome &outcome = m_run->outcome();
    if (m_run->isAbandoned())
        messages()->addText(tr("Connecting was cancelled."), false);
    else if (!outcome.hadBatches && !outcome.error)
        messages()->addText(tr("There is nothing to run."), false);
    if (const qint64 count = KNScriptRun::countOf(outcome.notRun))
        messages()->addLink(KNMessageText::batchesNotRun(count), count == 1 ? tr("Run it") : tr("Run them"));
    if (messages()->errorCount() > 0 || !m_results->showsRows())
        m_results->showMessages();
    m_errorMarks->show(outcome.error);
}

/// Escape closes the find bar, wherever the focus is.
void QueryTab::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape || m_findBar->isHidden()) {
        KNDocumentTab::keyPressEvent(event);
        return;
    }
    m_findBar->close();
}

void QueryTab::toggleResults()
{
    const bool hadFocus = m_results->isAncestorOf(focusWidget());
    m_results->setVisible(m_results->isHidden());
    if (hadFocus && m_results->isHidden())
        m_editor->setFocus();
}

void QueryTab::showNextPane()
{
    if (m_results->isAncestorOf(focusWidget()))
        m_editor->setFocus(Qt::ShortcutFocusReason);
    else
        m_results->focusContent();
}

void QueryTab::changeDatabase(const QString &name)
{
    if (isRunning() || m_session->isBusy())
        m_databaseBox->showDatabase(m_database);
    else
        m_session->changeDatabase(name);
}

void QueryTab::showIdleLoss(const QStringList &losses)
{
    m_lossBar->setText(
        losses.isEmpty()
            ? tr("The connection was lost. The next run opens a new one, with the same database and SET "
                 "options.")
            : KNFormat(tr("The connection was lost: %@. The next run asks before it opens a new one."),
                       losses.join(QStringLiteral("; "))));
}

void QueryTab::askAboutLostSession(const KNError &error, const std::function<void()> &proceed)
{
    confirmNewSession(*this, error, [this, proceed] {
        m_session->acceptLoss();
        proceed();
    });
}

void QueryTab::showDatabase(const QString &name)
{
    const bool isNew = name != m_database;
    m_database = name;
    m_databaseBox->showDatabase(name);
    if (!isNew)
        return;
    Q_EMIT statusChanged();
    Q_EMIT stateChanged();
}
