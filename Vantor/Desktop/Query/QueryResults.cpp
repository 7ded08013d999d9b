#include "Desktop/Query/QueryResults.h"

#include "Database/KNMessageText.h"
#include "Desktop/Query/MessagesView.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"

QueryResults::QueryResults(QWidget *parent)
    : QTabWidget(parent)
    , m_pane(new KNResultsPane)
    , m_messages(new MessagesView)
{
    setDocumentMode(true);
    setAccessibleName(tr("Results and messages"));
    m_messages->setFrameShape(QFrame::NoFrame);
    addTab(m_pane, tr("Results"));
    addTab(m_messages, tr("Messages"));
    connect(m_messages, &MessagesView::errorCountChanged, this, [this](int count) {
        setTabText(1, count == 0 ? tr("Messages") : tr("Messages (%1)").arg(KNMessageText::countText(count)));
    });
}

void QueryResults::beginRun(const std::shared_ptr<KNResultSetHolder> &results, const VantorDBC &details)
{
    m_showsRows = false;
    show();
    m_pane->beginRun(results, details);
    m_messages->beginRun(results);
}

void QueryResults::showNewResults()
{
    m_pane->showNewResults();
    m_messages->showNewResults();
    if (m_showsRows || m_pane->resultCount() == 0)
        return;
    m_showsRows = true;
    setCurrentWidget(m_pane);
}

void QueryResults::finishRun(const KNError &error)
{
    m_pane->finishRun();
    showNewResults();
    m_messages->finishRun(error);
}

void QueryResults::showMessages()
{
    setCurrentWidget(m_messages);
}

void QueryResults::focusContent()
{
    show();
    KNResultSection *const section = currentWidget() == m_pane ? m_pane->currentSection() : nullptr;
    if (section) {
        section->grid()->setFocus(Qt::ShortcutFocusReason);
    } else {
        showMessages();
        m_messages->setFocus(Qt::ShortcutFocusReason);
    }
}
