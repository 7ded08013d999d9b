#include "UI/Results/KNRecordView.h"

#include "Foundation/KNFormat.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNRecordModel.h"
#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultGridView.h"

#include <QAction>
#include <QBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QTableView>
#include <QToolButton>

KNRecordView::KNRecordView(KNResultGridView *grid, QWidget *parent)
    : QWidget(parent)
    , m_grid(grid)
    , m_model(new KNRecordModel(grid->resultModel(), this))
    , m_table(new QTableView(this))
    , m_caption(new QLabel(this))
{
    arrange();
    hide();
    connect(m_grid->selectionModel(), &QItemSelectionModel::currentChanged, this, &KNRecordView::followGrid);
    connect(m_grid->columns(), &KNResultColumns::changed, this, &KNRecordView::followGrid);
    connect(&m_grid->resultModel(), &QAbstractItemModel::rowsInserted, this, &KNRecordView::followGrid);
    connect(&m_grid->resultModel(), &QAbstractItemModel::modelReset, this, &KNRecordView::followGrid);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex &line) {
                const QModelIndex current = m_grid->currentIndex();
                const int column = m_model->columnOfLine(line.row());
                if (column >= 0 && current.isValid() && current.column() != column)
                    m_grid->setCurrentIndex(current.siblingAtColumn(column));
            });
    connect(m_table, &QTableView::activated, this, &KNRecordView::valueRequested);
}

void KNRecordView::arrange()
{
    m_table->setModel(m_model);
    m_table->setAccessibleName(tr("Values of the row"));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setTabKeyNavigation(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setDefaultSectionSize(m_grid->rowHeight() + 2);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_caption->setTextFormat(Qt::PlainText);
    auto *const head = new QHBoxLayout;
    head->addWidget(m_caption, 1);
    const auto addButton = [&](const QString &text, const QString &hint, const QKeySequence &keys,
                               void (KNRecordView::*slot)()) {
        auto *const action = new QAction(text, this);
        action->setToolTip(hint);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(action);
        connect(action, &QAction::triggered, this, slot);
        auto *const button = new QToolButton(this);
        button->setDefaultAction(action);
        button->setAutoRaise(true);
        button->setAutoRepeat(true);
        button->setAccessibleName(hint);
        head->addWidget(button);
    };
    addButton(tr("Previous"), tr("Previous row (Alt+Up)"), Qt::ALT | Qt::Key_Up,
              &KNRecordView::showPreviousRow);
    addButton(tr("Next"), tr("Next row (Alt+Down)"), Qt::ALT | Qt::Key_Down, &KNRecordView::showNextRow);
    addButton(tr("Close"), tr("Close the record (Esc)"), {}, &KNRecordView::close);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(2);
    layout->addLayout(head);
    layout->addWidget(m_table, 1);
    setFocusProxy(m_table);
}

QString KNRecordView::caption() const
{
    return m_caption->text();
}

void KNRecordView::open()
{
    if (!m_grid->currentIndex().isValid() && m_grid->resultModel().rowCount() > 0)
        m_grid->setCurrentIndex(m_grid->resultModel().index(0, m_grid->shownColumns().value(0)));
    show();
    m_table->setFocus();
}

void KNRecordView::close()
{
    hide();
    m_grid->setFocus();
}

void KNRecordView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    followGrid();
    m_table->resizeColumnToContents(KNRecordModel::Name);
    m_table->resizeColumnToContents(KNRecordModel::Type);
    // The rest of the width is the value's.
    const auto limitWidth = [this](KNRecordModel::Field field, int characters) {
        const int widest = fontMetrics().averageCharWidth() * characters;
        m_table->setColumnWidth(field, qMin(m_table->columnWidth(field) + 8, widest));
    };
    limitWidth(KNRecordModel::Name, 24);
    limitWidth(KNRecordModel::Type, 12);
}

void KNRecordView::followGrid()
{
    if (isHidden())
        return;
    const QModelIndex current = m_grid->currentIndex();
    m_model->setColumns(m_grid->shownColumns());
    m_model->setRow(current.isValid() ? current.row() : -1);
    const int rows = m_grid->resultModel().rowCount();
    m_caption->setText(!current.isValid()
                           ? tr("No row")
                           : KNFormat(tr("Row %@ of %@"), KNCountText(current.row() + 1), KNCountText(rows)));
    const int line = m_model->lineOfColumn(current.column());
    if (current.isValid() && line >= 0 && line != m_table->currentIndex().row())
        m_table->setCurrentIndex(m_model->index(line, KNRecordModel::Value));
}

void KNRecordView::showNextRow()
{
    moveBy(1);
}

void KNRecordView::showPreviousRow()
{
    moveBy(-1);
}

void KNRecordView::moveBy(int rows)
{
    const QModelIndex current = m_grid->currentIndex();
    const QModelIndex target = current.sibling(current.row() + rows, current.column());
    if (target.isValid())
        m_grid->setCurrentIndex(target);
}

bool KNRecordView::event(QEvent *event)
{
    // The view handles Escape before any shortcut does.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        event->accept();
    return QWidget::event(event);
}

void KNRecordView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
