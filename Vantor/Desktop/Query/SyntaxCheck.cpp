#include "Desktop/Query/SyntaxCheck.h"

#include "Database/KNSyntaxCheck.h"
#include "Desktop/Query/QueryBatches.h"
#include "Desktop/Query/QueryResults.h"
#include "Foundation/KNDispatch.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"

#include <QPointer>

namespace {

constexpr int PauseInTyping = 500;        // milliseconds
constexpr int LongestTypedText = 500'000; // bytes; longer texts are checked on request only

} // namespace

struct SyntaxCheck::Outcome
{
    int generation = 0;
    std::shared_ptr<KNResultSetHolder> results = std::make_shared<KNResultSetHolder>();
    KNError error;
    QString summary; ///< null if there is an error
    bool hadErrors = false;
};

SyntaxCheck::SyntaxCheck(KNSQLEditor *editor, QueryResults *results, ErrorMarks *marks, Settings settings,
                         QObject *parent)
    : QObject(parent)
    , m_editor(editor)
    , m_results(results)
    , m_marks(marks)
    , m_settings(std::move(settings))
{
    m_pause.setSingleShot(true);
    m_pause.setInterval(PauseInTyping);
    connect(&m_pause, &QTimer::timeout, this, &SyntaxCheck::checkTyped);
    connect(editor, &KNSQLEditor::textChanged, this, &SyntaxCheck::noteEdit);
}

void SyntaxCheck::noteRun()
{
    ++m_generation;
    m_isAwaited = false;
    m_isOffline = false;
}

void SyntaxCheck::noteEdit()
{
    ++m_generation;
    if (KNPreferences::current().checksWhileTyping && !m_isOffline)
        m_pause.start();
}

void SyntaxCheck::check()
{
    m_isAwaited = m_isBusy;
    if (m_isAwaited)
        return;
    QueryRequest request;
    request.text = m_editor->wholeText();
    request.range = m_editor->selectedRange();
    if (request.range.length > 0)
        request.part = QueryRequest::Part::Range;
    m_marks->beginRun();
    start(request, true);
}

void SyntaxCheck::checkTyped()
{
    if (m_isBusy)
        return m_pause.start();
    if (m_editor->length() > LongestTypedText)
        return;
    QueryRequest request;
    request.text = m_editor->wholeText();
    start(request, false);
}

void SyntaxCheck::start(const QueryRequest &request, bool isRequested)
{
    m_isBusy = true;
    Outcome outcome;
    outcome.generation = m_generation;
    KNDispatch::globalQueue(
        [request, outcome, isRequested, settings = m_settings(), check = QPointer(this)]() mutable {
            KNSyntaxCheck syntax(settings->syntaxCheckRules());
            const QList<KNQueryDetails> batches = batchesOf(request, *settings);
            VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
                [&](VantorDatabaseClient &client, KNError *error) {
                    syntax.run(batches, client, *outcome.results, error);
                },
                *settings, &outcome.error);
            outcome.hadErrors = syntax.hadErrors();
            outcome.summary = syntax.summary();
            KNDispatch::mainQueue([outcome, isRequested, check] {
                if (check)
                    check->finish(outcome, isRequested);
            });
        });
}

void SyntaxCheck::finish(const Outcome &outcome, bool isRequested)
{
    m_isBusy = false;
    m_isOffline = outcome.error && !outcome.hadErrors;
    if (m_isAwaited)
        return check();
    if (outcome.generation != m_generation)
        return;
    if (isRequested)
        show(outcome);
    else
        m_marks->showErrorsOf(*outcome.results);
}

void SyntaxCheck::show(const Outcome &outcome)
{
    MessagesView &messages = *m_results->messages();
    messages.beginRun(outcome.results);
    if (outcome.hadErrors || outcome.error) {
        messages.finishRun(outcome.error);
        m_marks->show(outcome.error);
    } else {
        messages.clearMessages();
        messages.addText(outcome.summary, false);
    }
    m_results->show();
    m_results->showMessages();
}
