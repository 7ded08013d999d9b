#include "UI/Results/KNResultFindBar.h"

#include "Foundation/KNDispatch.h"
#include "UI/Results/KNResultGridView.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr int PauseBeforeSearch = 200;

} // namespace

KNResultFindBar::KNResultFindBar(KNResultGridView *grid, QWidget *parent)
    : KNSearchBar(grid, tr("Find in the result"), parent)
    , m_grid(grid)
    , m_matchesCase(new QCheckBox(tr("Match &case"), this))
    , m_cancel(newButton(tr("Cancel"), tr("Cancel the search")))
    , m_pause(new QTimer(this))
{
    arrange();
    m_pause->setSingleShot(true);
    m_pause->setInterval(PauseBeforeSearch);
    connect(m_pause, &QTimer::timeout, this, [this] { startSearch(m_step); });
    const auto textChanged = [this] {
        cancel();
        m_isComplete = false;
        m_step = Step::Nearest;
        say({});
        m_pause->start();
    };
    connect(field(), &QLineEdit::textChanged, this, textChanged);
    connect(m_matchesCase, &QCheckBox::toggled, this, textChanged);
    connect(m_cancel, &QToolButton::clicked, this, &KNResultFindBar::cancel);
    const KNResultTableModel &model = grid->resultModel();
    connect(&model, &QAbstractItemModel::rowsInserted, this, &KNResultFindBar::rowsChanged);
    connect(&model, &QAbstractItemModel::modelReset, this, &KNResultFindBar::rowsChanged);
    connect(grid->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] {
        if (isVisible() && m_isComplete && !m_matches.empty())
            sayPosition();
    });
}

KNResultFindBar::~KNResultFindBar()
{
    if (m_cancelled)
        *m_cancelled = true;
}

void KNResultFindBar::arrange()
{
    field()->setPlaceholderText(tr("Find in the result"));
    m_cancel->hide();
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(field(), 1);
    QWidget *before = field();
    for (QWidget *const widget : std::initializer_list<QWidget *>{
             previousButton(), nextButton(), m_matchesCase, messageLabel(), m_cancel, closeButton()}) {
        layout->addWidget(widget);
        setTabOrder(before, widget);
        before = widget;
    }
}

void KNResultFindBar::open()
{
    const bool wasHidden = isHidden();
    KNSearchBar::open();
    if (wasHidden && !field()->text().isEmpty())
        startSearch(Step::None);
}

void KNResultFindBar::close()
{
    cancel();
    KNSearchBar::close();
}

void KNResultFindBar::rowsChanged()
{
    m_isComplete = false;
    if (isHidden() || field()->text().isEmpty())
        return;
    cancel();
    if (!m_pause->isActive())
        m_pause->start();
}

void KNResultFindBar::findNext()
{
    step(Step::Next);
}

void KNResultFindBar::findPrevious()
{
    step(Step::Previous);
}

void KNResultFindBar::cancel()
{
    m_pause->stop();
    if (m_cancelled) {
        *m_cancelled = true;
        say(tr("Cancelled"));
    }
    m_cancelled = nullptr;
    m_cancel->hide();
    m_step = Step::None;
}

void KNResultFindBar::startSearch(Step step)
{
    cancel();
    m_step = step;
    if (field()->text().isEmpty())
        return say({});
    say(tr("Searching…"));
    m_cancel->show();
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    KNRowSearch search = {field()->text(),
                          m_matchesCase->isChecked() ? Qt::CaseSensitive : Qt::CaseInsensitive};
    ResultRows rows = m_grid->resultModel().shownRows();
    rows.columns.clear();
    for (const int column : m_grid->shownColumns())
        rows.columns.append(column);
    KNDispatch::globalQueue([self = QPointer(this), search, rows, display = m_grid->resultModel().display(),
                             cancelled = m_cancelled] {
        auto matches = search.find(rows, display, *cancelled);
        KNDispatch::mainQueue([self, matches = std::move(matches), cancelled]() mutable {
            if (self && matches && self->m_cancelled == cancelled)
                self->finishSearch(std::move(*matches));
        });
    });
}

void KNResultFindBar::finishSearch(std::vector<KNRowSearch::Match> matches)
{
    m_cancelled = nullptr;
    m_cancel->hide();
    m_matches = std::move(matches);
    m_isComplete = true;
    sayPosition();
    step(std::exchange(m_step, Step::None));
}

KNRowSearch::Match KNResultFindBar::current() const
{
    const QModelIndex index = m_grid->currentIndex();
    return {static_cast<quint32>(std::max(0, index.row())),
            static_cast<quint32>(std::max(0, index.column()))};
}

void KNResultFindBar::step(Step step)
{
    if (step == Step::None)
        return;
    if (field()->text().isEmpty())
        return open();
    if (!m_isComplete) {
        if (isSearching())
            m_step = step;
        else
            startSearch(step);
        return;
    }
    if (m_matches.empty())
        return;
    auto target = m_matches.cend();
    if (step == Step::Previous) {
        target = std::lower_bound(m_matches.cbegin(), m_matches.cend(), current());
        target = target == m_matches.cbegin() ? std::prev(m_matches.cend()) : std::prev(target);
    } else {
        target = step == Step::Next ? std::upper_bound(m_matches.cbegin(), m_matches.cend(), current())
                                    : std::lower_bound(m_matches.cbegin(), m_matches.cend(), current());
        if (target == m_matches.cend())
            target = m_matches.cbegin();
    }
    const QModelIndex index =
        m_grid->resultModel().index(static_cast<int>(target->row), static_cast<int>(target->column));
    m_grid->setCurrentIndex(index);
    m_grid->scrollTo(index);
    sayPosition();
}

/// Says which of the matches is the current cell, or how many there are.
void KNResultFindBar::sayPosition()
{
    const auto found = std::lower_bound(m_matches.cbegin(), m_matches.cend(), current());
    const bool isCurrent = found != m_matches.cend() && *found == current();
    sayCount(isCurrent ? found - m_matches.cbegin() : -1, static_cast<qsizetype>(m_matches.size()),
             m_matches.size() >= KNRowSearch::MostMatches);
}
