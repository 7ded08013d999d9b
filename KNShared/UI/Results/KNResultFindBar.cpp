#include "UI/Results/KNResultFindBar.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "UI/Editor/KNSQLColours.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNResultGridView.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTimer>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr int PauseBeforeSearch = 200;

QToolButton *newFindButton(const QString &text, const QString &hint, QWidget *parent)
{
    auto *const made = new QToolButton(parent);
    made->setText(text);
    made->setToolTip(hint);
    made->setAccessibleName(hint);
    made->setFocusPolicy(Qt::TabFocus);
    return made;
}

} // namespace

KNResultFindBar::KNResultFindBar(KNResultGridView *grid, QWidget *parent)
    : QWidget(parent)
    , m_grid(grid)
    , m_field(new QLineEdit(this))
    , m_matchesCase(new QCheckBox(tr("Match &case"), this))
    , m_message(new QLabel(this))
    , m_cancel(newFindButton(tr("Cancel"), tr("Cancel the search"), this))
    , m_pause(new QTimer(this))
{
    arrange();
    hide();
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
    connect(m_field, &QLineEdit::textChanged, this, textChanged);
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
    m_field->setPlaceholderText(tr("Find in the result"));
    m_field->setAccessibleName(tr("Find in the result"));
    m_field->setClearButtonEnabled(true);
    m_message->setTextFormat(Qt::PlainText);
    m_cancel->hide();
    auto *const previous = newFindButton(tr("Previous"), tr("Previous match (Shift+F3)"), this);
    auto *const next = newFindButton(tr("Next"), tr("Next match (F3)"), this);
    auto *const closing = newFindButton(tr("Close"), tr("Close the find bar (Esc)"), this);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_field, 1);
    for (QWidget *const widget :
         std::initializer_list<QWidget *>{previous, next, m_matchesCase, m_message, m_cancel, closing})
        layout->addWidget(widget);
    setFocusProxy(m_field);
    connect(previous, &QToolButton::clicked, this, &KNResultFindBar::findPrevious);
    connect(next, &QToolButton::clicked, this, &KNResultFindBar::findNext);
    connect(closing, &QToolButton::clicked, this, &KNResultFindBar::close);
}

QString KNResultFindBar::message() const
{
    return m_message->text();
}

void KNResultFindBar::open()
{
    const bool wasHidden = isHidden();
    show();
    m_field->setFocus();
    m_field->selectAll();
    if (wasHidden && !m_field->text().isEmpty())
        startSearch(Step::None);
}

void KNResultFindBar::close()
{
    cancel();
    hide();
    m_grid->setFocus();
}

void KNResultFindBar::rowsChanged()
{
    m_isComplete = false;
    if (isHidden() || m_field->text().isEmpty())
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
    if (m_field->text().isEmpty())
        return say({});
    say(tr("Searching…"));
    m_cancel->show();
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    KNRowSearch search = {m_field->text(),
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
    if (m_matches.empty())
        say(tr("No matches"), true);
    else
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
    if (m_field->text().isEmpty())
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
    const bool areAll = m_matches.size() < KNRowSearch::MostMatches;
    const QString total =
        KNCountText(static_cast<qint64>(m_matches.size())) + (areAll ? QString() : QStringLiteral("+"));
    const auto found = std::lower_bound(m_matches.cbegin(), m_matches.cend(), current());
    if (found != m_matches.cend() && *found == current())
        say(KNFormat(tr("%@ of %@"), KNCountText(found - m_matches.cbegin() + 1), total));
    else
        say(m_matches.size() == 1 ? tr("1 match") : KNFormat(tr("%@ matches"), total));
}

void KNResultFindBar::say(const QString &text, bool isProblem)
{
    QPalette colours = palette();
    if (isProblem)
        colours.setColor(QPalette::WindowText, KNSQLColours::forPalette(palette()).error);
    m_message->setPalette(colours);
    m_message->setText(text);
}

bool KNResultFindBar::event(QEvent *event)
{
    // The bar handles Escape before any shortcut does.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        event->accept();
    return QWidget::event(event);
}

void KNResultFindBar::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape)
        close();
    else if (isReturn && event->modifiers() == Qt::ShiftModifier)
        findPrevious();
    else if (isReturn)
        findNext();
    else
        QWidget::keyPressEvent(event);
}
