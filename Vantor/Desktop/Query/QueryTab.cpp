#include "Desktop/Query/QueryTab.h"

#include "Database/KNMessageText.h"
#include "Desktop/Query/ClosePrompts.h"
#include "Desktop/Query/DatabaseBox.h"
#include "Desktop/Query/EditorActions.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryDocument.h"
#include "Desktop/Query/QueryRun.h"
#include "Foundation/KNDispatch.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Editor/KNFindBar.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"

#include <QPointer>
#include <QSplitter>
#include <QTabWidget>
#include <QUuid>

#include <algorithm>

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
    , m_resultsPane(new KNResultsPane)
    , m_messages(new MessagesView)
    , m_resultTabs(new QTabWidget)
    , m_clock(new QTimer(this))
    , m_id(QUuid::createUuid().toString(QUuid::WithoutBraces))
{
    m_editor->setDialect(details.tokenizerOptions(), details.keywords(), details.functions(),
                         details.dataTypes());
    arrange();
    connectParts();
    newConnection(details);
    showDatabase(details.database());
}

QueryTab::~QueryTab()
{
    m_run.reset();
    releaseConnection();
}

void QueryTab::arrange()
{
    auto *const databaseLabel = new QLabel(tr("&Database:"));
    databaseLabel->setBuddy(m_databaseBox);
    auto *const top = new QHBoxLayout;
    top->setContentsMargins(6, 4, 6, 4);
    top->addWidget(databaseLabel);
    top->addWidget(m_databaseBox);
    top->addStretch(1);

    auto *const editing = new QWidget;
    auto *const editingLayout = new QVBoxLayout(editing);
    editingLayout->setContentsMargins(0, 0, 0, 0);
    editingLayout->setSpacing(0);
    editingLayout->addWidget(m_editor, 1);
    editingLayout->addWidget(m_findBar);

    m_editor->setFrameShape(QFrame::NoFrame);
    m_messages->setFrameShape(QFrame::NoFrame);
    m_resultTabs->setDocumentMode(true);
    m_resultTabs->setAccessibleName(tr("Results and messages"));
    m_resultTabs->addTab(m_resultsPane, tr("Results"));
    m_resultTabs->addTab(m_messages, tr("Messages"));

    auto *const splitter = new QSplitter(Qt::Vertical);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(editing);
    splitter->addWidget(m_resultTabs);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
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
    connect(m_editor, &KNSQLEditor::textChanged, this, [this] { m_isEditedSinceRun = true; });
    connect(m_editor, &KNSQLEditor::textChanged, this, &QueryTab::stateChanged);
    connect(m_editor, &KNSQLEditor::cursorPositionChanged, this, &QueryTab::stateChanged);
    connect(m_messages, &MessagesView::lineActivated, m_editor, &KNSQLEditor::goToLine);
    connect(m_messages, &MessagesView::errorCountChanged, this, [this](int count) {
        m_resultTabs->setTabText(1, count == 0 ? tr("Messages") : tr("Messages (%1)").arg(count));
    });
    connect(m_databaseBox, &DatabaseBox::databaseChosen, this, &QueryTab::changeDatabase);
    connect(m_databaseBox, &DatabaseBox::loadFailed, this,
            [this](const KNError &error) { KNAlerts::shared().showError(this, error); });
}

QString QueryTab::text() const
{
    return m_editor->wholeText();
}

void QueryTab::setText(const QString &text)
{
    m_editor->setWholeText(text);
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
    confirmSessionLoss(*this, [this, proceed] { confirmTextLoss(*this, proceed); });
}

void QueryTab::prepareToEndSession(std::function<void()> proceed)
{
    if (KNPreferences::current().reopensTabs)
        confirmSessionLoss(*this, proceed);
    else
        prepareToClose(std::move(proceed));
}

std::shared_ptr<const VantorDBC> QueryTab::databaseConnectionDetails() const
{
    return m_connection->connectionDetails();
}

bool QueryTab::isRunning() const
{
    return m_run && !m_run->isFinished();
}

KNDocumentStatus QueryTab::status() const
{
    KNDocumentStatus status;
    status.database = m_database;
    status.rowCount = m_run ? m_run->results()->totalResultCount() : 0;
    status.elapsedMilliseconds = m_run ? m_run->elapsedMilliseconds() : 0;
    status.isRunning = isRunning();
    status.hasOpenTransaction = m_hasOpenTransaction;
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
        return !isRunning();
    case KNDocumentAction::Cancel:
        return isRunning();
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
    case KNDocumentAction::Cancel:
        return cancel();
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
        return performEditorAction(action, *m_editor, *m_findBar);
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
    const VantorDBCPtr details = m_connection->connectionDetails();
    details->setDatabase(state.database);
    newConnection(*details);
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

void QueryTab::start(QueryRequest request)
{
    if (isRunning())
        return;
    if (m_isChangingDatabase) {
        m_afterChangeOfDatabase = [this, request] { start(request); };
        return;
    }
    request.text = text();
    request.rowLimit = KNPreferences::current().rowLimit;
    request.asksForTransaction = m_hasOpenTransaction;
    m_editor->clearErrorMark();
    m_isEditedSinceRun = false;
    m_showsRows = false;
    m_databaseBox->setEnabled(false);
    m_resultTabs->show();
    m_run = std::make_unique<QueryRun>(m_connection, std::move(request), nullptr);
    connect(m_run.get(), &QueryRun::resultsChanged, this, &QueryTab::showNewResults);
    connect(m_run.get(), &QueryRun::finished, this, &QueryTab::finishRun);
    m_resultsPane->beginRun(m_run->results(), *m_connection->connectionDetails());
    m_messages->beginRun(m_run->results());
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
    m_resultsPane->showNewResults();
    m_messages->showNewResults();
    if (!m_showsRows && m_resultsPane->resultCount() > 0) {
        m_showsRows = true;
        m_resultTabs->setCurrentWidget(m_resultsPane);
    }
    Q_EMIT statusChanged();
}

void QueryTab::finishRun()
{
    m_clock->stop();
    const QueryOutcome &outcome = m_run->outcome();
    if (m_run->isAbandoned())
        newConnection(*m_connection->connectionDetails());
    m_resultsPane->finishRun();
    showNewResults();
    m_messages->finishRun(outcome.error);
    m_databaseBox->setEnabled(true);
    if (!outcome.database.isNull())
        showDatabase(outcome.database);
    if (outcome.inTransaction)
        m_hasOpenTransaction = *outcome.inTransaction;
    Q_EMIT statusChanged();
    showOutcome();
    const QueryRequest &request = m_run->request();
    if (VantorTabConnection::isSessionLost(outcome.error)) {
        askAboutLostSession(outcome.error, [this, request] { start(request); });
        return;
    }
    Q_EMIT runFinished({m_runBegan,
                        request.part == QueryRequest::Part::Range
                            ? request.text.mid(request.range.location, request.range.length)
                            : request.text,
                        m_database, m_run->elapsedMilliseconds(), m_run->results()->totalResultCount(),
                        m_messages->firstError(), outcome.wasCancelled});
}

void QueryTab::showOutcome()
{
    const QueryOutcome &outcome = m_run->outcome();
    if (m_run->isAbandoned())
        m_messages->addText(tr("Connecting was cancelled."), false);
    else if (!outcome.hadBatches && !outcome.error)
        m_messages->addText(tr("There is nothing to run."), false);
    if (m_messages->errorCount() > 0 || !m_showsRows)
        m_resultTabs->setCurrentWidget(m_messages);
    if (!m_isEditedSinceRun)
        markError(outcome.error);
}

void QueryTab::markError(const KNError &error)
{
    if (const KNRange range = KNMessageText::markedRange(error); range.isFound())
        m_editor->markError(range);
    else if (const int line = m_messages->firstErrorLine(); line > 0)
        m_editor->markErrorLine(line);
}

void QueryTab::toggleResults()
{
    const bool hadFocus = m_resultTabs->isAncestorOf(focusWidget());
    m_resultTabs->setVisible(m_resultTabs->isHidden());
    if (hadFocus && m_resultTabs->isHidden())
        m_editor->setFocus();
}

void QueryTab::showNextPane()
{
    if (m_resultTabs->isAncestorOf(focusWidget())) {
        m_editor->setFocus(Qt::ShortcutFocusReason);
        return;
    }
    m_resultTabs->show();
    KNResultSection *const section =
        m_resultTabs->currentWidget() == m_resultsPane ? m_resultsPane->currentSection() : nullptr;
    QWidget *const target = section ? static_cast<QWidget *>(section->grid()) : m_messages;
    if (!section)
        m_resultTabs->setCurrentWidget(m_messages);
    target->setFocus(Qt::ShortcutFocusReason);
}

void QueryTab::changeDatabase(const QString &name)
{
    if (isRunning() || m_isChangingDatabase) {
        m_databaseBox->showDatabase(m_database);
        return;
    }
    m_isChangingDatabase = true;
    KNDispatch::globalQueue([tab = QPointer(this), connection = m_connection, name] {
        KNError error;
        QString database;
        connection->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                client.changeDatabase(name, failure);
                database = client.currentDatabase();
            },
            &error);
        KNDispatch::mainQueue([tab, name, database, error] {
            if (tab)
                tab->endChangeOfDatabase(name, database, error);
        });
    });
}

/// `name` is the requested database, `database` the session's current one.
void QueryTab::endChangeOfDatabase(const QString &name, const QString &database, const KNError &error)
{
    m_isChangingDatabase = false;
    if (VantorTabConnection::isSessionLost(error))
        askAboutLostSession(error, [this, name] { changeDatabase(name); });
    else if (error)
        KNAlerts::shared().showError(this, error);
    showDatabase(database.isNull() ? m_database : database);
    if (const auto next = std::exchange(m_afterChangeOfDatabase, {}); next && !error)
        next();
}

/// Nothing runs on a new session before the user is told what was lost with the old one.
void QueryTab::askAboutLostSession(const KNError &error, std::function<void()> proceed)
{
    const KNAlerts::Question question{error.localizedDescription(),
                                      tr("Run on a new connection?"),
                                      {tr("Cancel"), tr("Run on New Connection")}};
    KNAlerts::shared().ask(this, question,
                           [self = QPointer(this), connection = m_connection, proceed](int button) {
                               if (!self || button != 1 || self->isRunning())
                                   return;
                               connection->beginNewSession();
                               self->m_hasOpenTransaction = false;
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

void QueryTab::newConnection(const VantorDBC &details)
{
    releaseConnection();
    m_connection = VantorDatabaseConnectionPool::sharedInstance()->connectionForTab(details);
    m_databaseBox->setConnectionDetails(details);
    m_hasOpenTransaction = false;
}

/// Closing a connection may wait for the server.
void QueryTab::releaseConnection()
{
    if (m_connection)
        KNDispatch::globalQueue([connection = std::exchange(m_connection, nullptr)] {});
}
