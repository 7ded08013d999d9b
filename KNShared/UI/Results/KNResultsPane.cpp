#include "UI/Results/KNResultsPane.h"

#include "Foundation/KNFormat.h"
#include "Foundation/KNUserDefaults.h"
#include "RowEditing/ResultSetViewControllerHelper.h"
#include "UI/Alerts/KNFileManager.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNNoticeBar.h"
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultExportBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultStack.h"
#include "UI/Results/KNResultTabs.h"
#include "UI/Results/KNSelectionSummary.h"

#include <QApplication>
#include <QBoxLayout>
#include <QFileInfo>
#include <QLabel>
#include <QStackedWidget>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr int RowsOfOneAmongSeveral = 10;
constexpr int SectionsKeptAround = 4; // hidden sections kept on each side
const QString ResultsAsTabs = QStringLiteral("ResultsAsTabs");

QString titleOf(int result)
{
    return KNFormat(KNResultsPane::tr("Result %d"), result + 1);
}

} // namespace

KNResultsPane::KNResultsPane(QWidget *parent)
    : QWidget(parent)
    , m_showsTabs(KNUserDefaults::standardUserDefaults()->boolForKey(ResultsAsTabs))
    , m_empty(new QLabel(this))
    , m_tabs(new KNResultTabs(this))
    , m_mode(new QToolButton(this))
    , m_stack(new KNResultStack([this](int result) { return section(result); },
                                [this](int result) { return wantedHeight(result); },
                                [this](int first, int last) { dropSections(first, last); }, this))
    , m_page(new QWidget(this))
    , m_views(new QStackedWidget(this))
    , m_exportBar(new KNResultExportBar(this))
    , m_noticeBar(new KNNoticeBar(this))
{
    setAccessibleName(tr("Results"));
    m_mode->setAutoRaise(true);
    auto *const pageLayout = new QVBoxLayout(m_page);
    pageLayout->setContentsMargins({});
    m_views->addWidget(m_stack);
    m_views->addWidget(m_page);
    m_views->addWidget(m_empty);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setWordWrap(true);
    m_empty->setForegroundRole(QPalette::PlaceholderText);

    auto *const head = new QHBoxLayout;
    head->addWidget(m_tabs, 1);
    head->addStretch();
    head->addWidget(m_mode);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addLayout(head);
    layout->addWidget(m_views, 1);
    layout->addWidget(m_exportBar);
    layout->addWidget(m_noticeBar);
    connect(m_exportBar, &KNResultExportBar::written, this, &KNResultsPane::showWritten);

    connect(m_tabs, &KNResultTabs::currentChanged, this, [this](int result) {
        if (m_showsTabs)
            showTab(result);
    });
    connect(m_mode, &QToolButton::clicked, this, [this] { setShowsTabs(!m_showsTabs); });
    setShowsTabs(m_showsTabs);
}

KNResultsPane::~KNResultsPane()
{
    clear();
}

void KNResultsPane::beginRun(const std::shared_ptr<KNResultSetHolder> &results, const VantorDBC &details)
{
    clear();
    m_holder = results;
    m_details = details.copy();
    m_isRunning = true;
    showPage();
}

void KNResultsPane::finishRun()
{
    m_isRunning = false;
    showNewResults();
    showPage();
}

void KNResultsPane::clear()
{
    m_isRunning = false;
    qDeleteAll(std::exchange(m_sections, {}));
    m_entries.clear();
    m_readOnlyReason.clear();
    m_awaitingColumns.clear();
    m_holder = nullptr;
    m_position = 0;
    m_firstUnfinished = 0;
    showPlaces();
    setSelectionSummary({});
    if (!m_exportBar->isExporting())
        m_noticeBar->hide();
    if (std::exchange(m_rowCount, 0) != 0)
        Q_EMIT rowCountChanged(0);
}

void KNResultsPane::beginEditing(const KNResultEditSession &session)
{
    if (resultCount() == 0 || !m_holder)
        return;
    Entry &entry = m_entries.front();
    if (resultCount() > 1)
        m_readOnlyReason = tr("several results");
    else if (m_holder->resultSets().last() != entry.model->result())
        m_readOnlyReason = tr("other statements ran after it");
    else if (session.database.isEmpty())
        m_readOnlyReason = tr("its database is not known");
    if (m_readOnlyReason.isEmpty()) {
        entry.editing = std::make_unique<KNResultEditing>(*entry.model, session);
        entry.model->setEditing(entry.editing.get());
    }
    for (const int result : m_sections.keys())
        showEditing(result, *m_sections[result]);
}

void KNResultsPane::showEditing(int result, KNResultSection &section)
{
    const Entry &entry = m_entries[static_cast<std::size_t>(result)];
    if (entry.editing)
        section.setEditing(*entry.editing);
    else if (!m_readOnlyReason.isEmpty())
        section.showReadOnly(m_readOnlyReason);
}

KNResultEditing *KNResultsPane::editing() const
{
    return m_entries.size() == 1 ? m_entries.front().editing.get() : nullptr;
}

qsizetype KNResultsPane::pendingChanges() const
{
    return editing() ? editing()->edits().changeCount() : 0;
}

void KNResultsPane::showWritten(qsizetype rows, const QString &path, const QStringList &remarks)
{
    const QString name = QFileInfo(path).fileName();
    const QString text = rows == 1 ? KNFormat(tr("1 row written to %@."), name)
                                   : KNFormat(tr("%@ rows written to %@."), KNCountText(rows), name);
    m_noticeBar->showNotice((QStringList(text) + remarks).join(u' '), tr("Open Folder"),
                            [path] { KNFileManager::shared().showFolderOf(path); });
}

void KNResultsPane::setSelectionSummary(const QString &text)
{
    if (std::exchange(m_selectionSummary, text) != text)
        Q_EMIT selectionSummaryChanged();
}

qint64 KNResultsPane::rowCount() const
{
    return m_rowCount;
}

void KNResultsPane::showNewResults()
{
    if (!m_holder)
        return;
    bool hasChanged = takeNewResults();
    for (int result = m_firstUnfinished; result < resultCount(); ++result) {
        KNResultTableModel &model = *m_entries[static_cast<std::size_t>(result)].model;
        const int before = model.arrivedRowCount();
        if (!model.showPublishedRows(!m_isRunning))
            continue;
        hasChanged = true;
        m_rowCount += model.arrivedRowCount() - before;
        if (KNResultSection *const shown = m_sections.value(result))
            shown->updateCaption();
    }
    while (m_firstUnfinished < resultCount() &&
           m_entries[static_cast<std::size_t>(m_firstUnfinished)].model->isFinished())
        ++m_firstUnfinished;
    if (hasChanged) {
        showPlaces();
        Q_EMIT rowCountChanged(m_rowCount);
    }
}

/// Creates entries for results whose columns are known now.
bool KNResultsPane::takeNewResults()
{
    const QList<KNDatabaseResultSetPtr> results = m_holder->newResultSets(&m_position);
    m_awaitingColumns.insert(m_awaitingColumns.end(), results.begin(), results.end());
    const int before = resultCount();
    std::erase_if(m_awaitingColumns, [this](const KNDatabaseResultSetPtr &result) {
        const bool isFinished = result->isFinished(); // read first: columns are set before
        if (result->columnNames().isEmpty())
            return isFinished;
        std::shared_ptr<ResultSetViewControllerHelper> helper =
            m_details->createResultSetViewControllerHelper();
        helper->setColumnTypes(result->columnTypes());
        m_entries.push_back({std::make_unique<KNResultTableModel>(result, std::move(helper)), {}, nullptr});
        return true;
    });
    return resultCount() > before;
}

void KNResultsPane::showPlaces()
{
    m_tabs->setCount(resultCount());
    m_tabs->setVisible(m_showsTabs && resultCount() > 1);
    m_mode->setVisible(resultCount() > 1);
    showPage();
    if (!m_showsTabs)
        m_stack->setCount(resultCount());
    else if (resultCount() > 0 && !m_sections.contains(m_tabs->current()))
        showTab(m_tabs->current());
}

/// Shows the results or why there are none.
void KNResultsPane::showPage()
{
    if (m_isRunning)
        m_empty->setText(tr("Waiting for results…"));
    else if (m_holder)
        m_empty->setText(tr("The query returned no result set. Its messages are under Messages."));
    else
        m_empty->setText(tr("Run a query with F5 to see its results here."));
    if (resultCount() == 0)
        m_views->setCurrentWidget(m_empty);
    else
        m_views->setCurrentIndex(m_showsTabs ? 1 : 0);
}

QString KNResultsPane::emptyText() const
{
    return m_views->currentWidget() == m_empty ? m_empty->text() : QString();
}

void KNResultsPane::showTab(int result)
{
    if (result < 0 || result >= resultCount())
        return;
    KNResultSection *const shown = section(result);
    if (m_page->layout()->indexOf(shown) < 0)
        m_page->layout()->addWidget(shown);
    for (KNResultSection *const other : std::as_const(m_sections))
        other->setVisible(other == shown);
    dropSections(result, result);
}

void KNResultsPane::setShowsTabs(bool shows)
{
    if (shows != m_showsTabs)
        KNUserDefaults::standardUserDefaults()->setObject(ResultsAsTabs, shows);
    m_showsTabs = shows;
    m_mode->setText(shows ? tr("Show Stacked") : tr("Show as Tabs"));
    m_mode->setAccessibleName(m_mode->text());
    // A section belongs to one of the two views; it is recreated in the current one.
    for (const int result : m_sections.keys())
        m_entries[static_cast<std::size_t>(result)].columns = m_sections[result]->grid()->columns()->state();
    qDeleteAll(std::exchange(m_sections, {}));
    setSelectionSummary({});
    m_stack->setCount(0);
    showPlaces();
}

KNResultSection *KNResultsPane::section(int result)
{
    if (KNResultSection *const existing = m_sections.value(result))
        return existing;
    const Entry &entry = m_entries[static_cast<std::size_t>(result)];
    auto *const made = new KNResultSection(titleOf(result), *entry.model, *m_details, m_views);
    if (!entry.columns.isEmpty())
        made->grid()->columns()->restoreState(entry.columns);
    connect(made, &KNResultSection::exportRequested, this, [this, made] {
        m_exportBar->exportRows(made->model().shownRows(), made->grid()->columns()->hidden().size());
    });
    connect(made, &KNResultSection::noticed, m_noticeBar,
            qOverload<const QString &>(&KNNoticeBar::showNotice));
    connect(made->selectionSummary(), &KNSelectionSummary::changed, this,
            [this, made] { setSelectionSummary(made->selectionSummary()->text()); });
    showEditing(result, *made);
    m_sections.insert(result, made);
    return made;
}

KNResultSection *KNResultsPane::currentSection()
{
    if (m_entries.empty())
        return nullptr;
    for (KNResultSection *const each : std::as_const(m_sections)) {
        if (each->isAncestorOf(focusWidget()))
            return each;
    }
    if (m_showsTabs)
        return section(m_tabs->current());
    const QList<int> places = m_sections.keys();
    return places.isEmpty() ? nullptr : m_sections.value(*std::min_element(places.begin(), places.end()));
}

bool KNResultsPane::perform(KNDocumentAction action)
{
    KNResultSection *const current = isAncestorOf(QApplication::focusWidget()) ? currentSection() : nullptr;
    return current && current->perform(action);
}

/// Deletes sections that are far outside of the visible range.
void KNResultsPane::dropSections(int firstKept, int lastKept)
{
    for (const int result : m_sections.keys()) {
        KNResultSection *const each = m_sections[result];
        if (result >= firstKept && result <= lastKept)
            continue;
        if (result >= firstKept - SectionsKeptAround && result <= lastKept + SectionsKeptAround) {
            each->hide();
            continue;
        }
        m_entries[static_cast<std::size_t>(result)].columns = each->grid()->columns()->state();
        m_sections.remove(result);
        if (!each->selectionSummary()->text().isEmpty())
            setSelectionSummary({});
        each->hide();
        each->deleteLater();
    }
}

int KNResultsPane::wantedHeight(int result) const
{
    const int rows =
        std::clamp(m_entries[static_cast<std::size_t>(result)].model->rowCount(), 1, RowsOfOneAmongSeveral);
    const KNResultSection *const example =
        m_sections.value(result, m_sections.isEmpty() ? nullptr : *m_sections.begin());
    return example ? example->heightForRows(rows) : (rows + 4) * fontMetrics().height() * 3 / 2;
}
