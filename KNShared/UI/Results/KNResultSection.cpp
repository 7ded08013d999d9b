#include "UI/Results/KNResultSection.h"

#include "Foundation/KNFormat.h"
#include "UI/KNPlainToolTip.h"
#include "UI/ResultEditing/KNResultEditActions.h"
#include "UI/ResultEditing/KNRowEditBar.h"
#include "UI/Results/KNColumnFilterDialog.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNRecordView.h"
#include "UI/Results/KNResultColumnMenu.h"
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultFilterBar.h"
#include "UI/Results/KNResultFindBar.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNSelectionSummary.h"
#include "UI/Results/KNValueViewer.h"

#include <QApplication>
#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QSplitter>
#include <QStyle>
#include <QToolButton>

namespace {

std::optional<KNDocumentAction> findActionOf(const QKeyEvent &event)
{
    const QKeyCombination keys = event.keyCombination();
    if (keys == (Qt::CTRL | Qt::Key_F))
        return KNDocumentAction::Find;
    if (keys == QKeyCombination(Qt::Key_F3))
        return KNDocumentAction::FindNext;
    if (keys == (Qt::SHIFT | Qt::Key_F3))
        return KNDocumentAction::FindPrevious;
    return std::nullopt;
}

} // namespace

KNResultSection::KNResultSection(const QString &title, KNResultTableModel &model, const VantorDBC &details,
                                 QWidget *parent)
    : QWidget(parent)
    , m_title(title)
    , m_model(model)
    , m_grid(new KNResultGridView(model, this))
    , m_filterBar(new KNResultFilterBar(model, this))
    , m_findBar(new KNResultFindBar(m_grid, this))
    , m_recordView(new KNRecordView(m_grid, this))
    , m_copier(new KNResultCopier(details, this))
    , m_selectionSummary(new KNSelectionSummary(m_grid))
    , m_caption(new QLabel(this))
    , m_editState(new QLabel(this))
    , m_menu(new QMenu(this))
    , m_columnMenu(new KNResultColumnMenu(this))
    , m_cancel(new QToolButton(this))
{
    setAccessibleName(title);
    addActions();
    m_cancel->setText(tr("Cancel"));
    m_cancel->setAccessibleName(tr("Cancel sorting or filtering"));
    m_filterBar->setVisible(!model.arrangement().filterText.isEmpty());
    m_caption->setTextFormat(Qt::PlainText);
    m_caption->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto *const head = new QHBoxLayout;
    m_editState->setTextFormat(Qt::PlainText);
    m_editState->setForegroundRole(QPalette::PlaceholderText);
    m_editState->hide();
    head->addWidget(m_caption, 1);
    head->addWidget(m_editState);
    head->addWidget(m_cancel);
    head->addWidget(newButton(m_filter));
    head->addWidget(newButton(m_export));
    auto *const layout = new QVBoxLayout(this);
    const int space = style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing) / 2;
    layout->setContentsMargins(space, 0, 0, 0);
    layout->setSpacing(space);
    layout->addLayout(head);
    layout->addWidget(m_filterBar);
    auto *const splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(m_grid);
    splitter->addWidget(m_recordView);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    layout->addWidget(splitter, 1);
    layout->addWidget(m_findBar);
    setFocusProxy(m_grid);

    m_grid->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_grid, &QWidget::customContextMenuRequested, this, &KNResultSection::showMenu);
    connect(m_grid, &KNResultGridView::copyRequested, this,
            [this] { copySelection(QStringLiteral("text")); });
    connect(m_grid, &KNResultGridView::valueRequested, this, &KNResultSection::showValue);
    connect(m_grid, &KNResultGridView::sortRequested, this, &KNResultSection::toggleSorting);
    connect(m_grid->columns(), &KNResultColumns::menuRequested, this,
            [this](int column, const QPoint &position) { columnMenu(column)->popup(position); });
    connect(m_recordView, &KNRecordView::valueRequested, this, &KNResultSection::showValue);
    connect(m_filterBar, &KNResultFilterBar::closed, m_grid, qOverload<>(&QWidget::setFocus));
    connect(m_cancel, &QToolButton::clicked, &m_model, &KNResultTableModel::cancelArranging);
    connect(&m_model, &KNResultTableModel::arrangingChanged, this, &KNResultSection::updateCaption);
    connect(m_copier, &KNResultCopier::copied, this, &KNResultSection::showCopied);
    updateCaption();
}

void KNResultSection::setEditing(KNResultEditing &editing)
{
    m_editActions = new KNResultEditActions(*this, editing, m_menu, m_editState);
    layout()->addWidget(m_editActions->bar());
}

void KNResultSection::showReadOnly(const QString &reason)
{
    m_editState->setText(KNFormat(tr("Read-only: %@"), reason));
    m_editState->show();
}

QString KNResultSection::editState() const
{
    return m_editState->text();
}

QString KNResultSection::caption() const
{
    return m_caption->text();
}

int KNResultSection::heightForRows(int rows) const
{
    const QMargins margins = layout()->contentsMargins();
    int height = margins.top() + margins.bottom() + layout()->itemAt(0)->sizeHint().height() +
                 layout()->spacing() + m_grid->heightForRows(rows);
    for (const QWidget *const bar : std::initializer_list<QWidget *>{m_filterBar, m_findBar}) {
        if (bar->isVisibleTo(this))
            height += bar->sizeHint().height() + layout()->spacing();
    }
    return height;
}

bool KNResultSection::perform(KNDocumentAction action)
{
    switch (action) {
    case KNDocumentAction::Find:
        m_findBar->open();
        return true;
    case KNDocumentAction::FindNext:
        m_findBar->findNext();
        return true;
    case KNDocumentAction::FindPrevious:
        m_findBar->findPrevious();
        return true;
    default:
        return false;
    }
}

void KNResultSection::keyPressEvent(QKeyEvent *event)
{
    if (const auto action = findActionOf(*event))
        perform(*action);
    else
        QWidget::keyPressEvent(event);
}

void KNResultSection::updateCaption()
{
    const KNRowArrangement &arrangement = m_model.arrangement();
    const int rows = m_model.storedRowCount();
    const int arrived = m_model.arrivedRowCount();
    QString text = arrived == 1 ? tr("1 row") : KNFormat(tr("%@ rows"), KNCountText(arrived));
    if (arrangement.isFiltered())
        text = KNFormat(tr("%@ of %@"), KNCountText(rows), text);
    if (!m_model.isFinished())
        text = KNFormat(tr("%@ so far"), text);
    if (arrangement.sortColumn != KNRowArrangement::NoColumn) {
        const bool descends = arrangement.sortOrder == Qt::DescendingOrder;
        text = KNFormat(descends ? tr("%@, sorted by %@ (descending)") : tr("%@, sorted by %@"), text,
                        m_model.columnName(static_cast<int>(arrangement.sortColumn)));
    }
    if (m_model.isArranging())
        text = KNFormat(tr("%@ – working…"), text);
    text = KNFormat(tr("%@: %@"), m_title, text);
    m_caption->setText(text);
    m_caption->setToolTip(KNPlainToolTip(text));
    m_cancel->setVisible(m_model.isArranging());
    for (QAction *const action : std::as_const(m_arrangingActions))
        action->setEnabled(m_model.isFinished());
}

void KNResultSection::copySelection(const QString &format)
{
    const ResultFormat *const found = ResultFormat::named(format);
    if (!found)
        return;
    m_columnsLeftOut = m_grid->hiddenColumnsInSelection();
    m_copier->copy(m_grid->selectedRows(), *found);
}

/// Tells what the clipboard lacks; a complete copy needs no note.
void KNResultSection::showCopied(qsizetype rows, const QString &remark)
{
    QStringList remarks;
    if (!remark.isEmpty())
        remarks.append(remark);
    if (m_columnsLeftOut > 0)
        remarks.append(m_columnsLeftOut == 1
                           ? tr("A hidden column was left out.")
                           : KNFormat(tr("%@ hidden columns were left out."), KNCountText(m_columnsLeftOut)));
    if (remarks.isEmpty())
        return;
    remarks.prepend(rows == 1 ? tr("1 row copied.") : KNFormat(tr("%@ rows copied."), KNCountText(rows)));
    Q_EMIT noticed(remarks.join(u' '));
}

void KNResultSection::openFilter()
{
    if (m_model.isFinished())
        m_filterBar->open();
}

void KNResultSection::showValue()
{
    const QModelIndex index = m_grid->currentIndex();
    if (!index.isValid() || index.row() >= m_model.storedRowCount())
        return;
    const QString type = m_model.typeName(index.column());
    auto *const viewer =
        new KNValueViewer(m_model.result(), m_model.storedRow(index.row()), index.column(), type, window());
    if (m_editActions && m_editActions->canEditInWindow(index))
        viewer->addEditButton([actions = QPointer(m_editActions), cell = QPersistentModelIndex(index)] {
            if (actions)
                actions->editInWindow(cell);
        });
    viewer->show();
}

void KNResultSection::showRecord()
{
    if (m_recordView->isAncestorOf(QApplication::focusWidget()))
        m_recordView->close();
    else
        m_recordView->open();
}

void KNResultSection::toggleSorting(int column)
{
    const KNRowArrangement &arrangement = m_model.arrangement();
    if (arrangement.sortColumn != column)
        sort(column, Qt::AscendingOrder);
    else if (arrangement.sortOrder == Qt::AscendingOrder)
        sort(column, Qt::DescendingOrder);
    else
        sort(static_cast<int>(KNRowArrangement::NoColumn), Qt::AscendingOrder);
}

void KNResultSection::sort(int column, Qt::SortOrder order)
{
    KNRowArrangement arrangement = m_model.arrangement();
    arrangement.sortColumn = column;
    arrangement.sortOrder = order;
    m_model.arrange(arrangement);
}

void KNResultSection::filterColumn(int column)
{
    if (!m_model.isFinished())
        return;
    auto *const dialog = new KNColumnFilterDialog(m_model, column, this);
    dialog->beginSheet([this, dialog](int code) {
        if (code != 0)
            setColumnFilter(dialog->filter());
        m_grid->setFocus();
    });
}

void KNResultSection::setColumnFilter(const KNColumnFilter &filter)
{
    KNRowArrangement arrangement = m_model.arrangement();
    arrangement.setColumnFilter(filter);
    m_model.arrange(arrangement);
}

KNResultColumnMenu *KNResultSection::columnMenu(int column)
{
    m_columnMenu->setColumn(column);
    return m_columnMenu;
}

void KNResultSection::addActions()
{
    addCopyActions();
    m_menu->addSeparator();
    addAction(tr("Select &All"), QKeySequence::SelectAll, [this] { m_grid->selectAll(); });
    addAction(tr("Show &Value"), QKeySequence(Qt::CTRL | Qt::Key_I), [this] { showValue(); });
    addAction(tr("Show &Row as Form"), QKeySequence(Qt::Key_F4), [this] { showRecord(); });
    m_menu->addSeparator();
    addAction(tr("Fi&nd…\tCtrl+F"), {}, [this] { m_findBar->open(); });
    addArrangingActions();
    m_menu->addSeparator();
    m_export = addAction(tr("&Export…"), {}, [this] { Q_EMIT exportRequested(); });
}

void KNResultSection::addCopyActions()
{
    const auto addCopy = [this](const char *name, const QKeySequence &shortcut) {
        const QString format = QString::fromLatin1(name);
        addAction(ResultFormat::named(format)->localizedTitle(), shortcut,
                  [this, format] { copySelection(format); });
    };
    addCopy("text", QKeySequence::Copy);
    addCopy("text-with-headers", QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    QMenu *const others = m_menu->addMenu(tr("Copy A&s"));
    for (const ResultFormat &format : ResultFormat::offeredFor(ResultFormat::CopyAs))
        connect(others->addAction(format.localizedTitle()), &QAction::triggered, this,
                [this, name = format.name] { copySelection(name); });
}

void KNResultSection::addArrangingActions()
{
    m_filter =
        addAction(tr("&Filter…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F), [this] { openFilter(); });
    m_arrangingActions += m_filter;
    m_menu->addMenu(m_columnMenu);
    connect(m_menu, &QMenu::aboutToShow, this,
            [this] { columnMenu(qMax(0, m_grid->currentIndex().column())); });
    m_arrangingActions += addAction(tr("Show All &Rows"), {}, [this] { m_filterBar->showAllRows(); });
}

QAction *KNResultSection::addAction(const QString &text, const QKeySequence &shortcut,
                                    std::function<void()> triggered)
{
    QAction *const action = m_menu->addAction(text);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    QWidget::addAction(action);
    connect(action, &QAction::triggered, this, std::move(triggered));
    return action;
}

QToolButton *KNResultSection::newButton(QAction *action)
{
    auto *const button = new QToolButton(this);
    button->setDefaultAction(action);
    button->setAutoRaise(true);
    button->setAccessibleName(action->text().remove(QLatin1Char('&')));
    return button;
}

void KNResultSection::showMenu(const QPoint &position)
{
    m_menu->popup(m_grid->viewport()->mapToGlobal(position));
}
