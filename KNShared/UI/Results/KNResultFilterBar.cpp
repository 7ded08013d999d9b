#include "UI/Results/KNResultFilterBar.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>
#include <QToolButton>

namespace {

constexpr int PauseMilliseconds = 300;

} // namespace

KNResultFilterBar::KNResultFilterBar(KNResultTableModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_field(new QLineEdit(this))
    , m_columns(new QComboBox(this))
    , m_pause(new QTimer(this))
{
    m_field->setPlaceholderText(tr("Show rows that contain…"));
    m_field->setAccessibleName(tr("Text that rows must contain"));
    m_field->setClearButtonEnabled(true);
    m_field->setText(model.arrangement().filterText);
    m_columns->addItem(tr("Any column"));
    for (int column = 0; column < model.columnCount(); ++column)
        m_columns->addItem(model.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString());
    m_columns->setCurrentIndex(static_cast<int>(model.arrangement().filterColumn) + 1);
    m_columns->setAccessibleName(tr("Column in which the text is looked for"));
    m_columns->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_columns->setMinimumContentsLength(14);
    auto *const all = new QToolButton(this);
    all->setText(tr("Show All Rows"));

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_field, 1);
    layout->addWidget(m_columns);
    layout->addWidget(all);
    setFocusProxy(m_field);

    m_pause->setSingleShot(true);
    m_pause->setInterval(PauseMilliseconds);
    connect(m_pause, &QTimer::timeout, this, &KNResultFilterBar::apply);
    connect(m_field, &QLineEdit::textChanged, m_pause, qOverload<>(&QTimer::start));
    connect(m_field, &QLineEdit::returnPressed, this, &KNResultFilterBar::apply);
    connect(m_columns, &QComboBox::activated, this, &KNResultFilterBar::apply);
    connect(all, &QToolButton::clicked, this, &KNResultFilterBar::showAllRows);
}

void KNResultFilterBar::open()
{
    show();
    m_field->setFocus();
    m_field->selectAll();
}

void KNResultFilterBar::showAllRows()
{
    m_field->clear();
    m_pause->stop();
    KNRowArrangement arrangement = m_model.arrangement();
    arrangement.filterText.clear();
    arrangement.columnFilters.clear();
    if (arrangement != m_model.arrangement() || m_model.isArranging())
        m_model.arrange(arrangement);
    hide();
    Q_EMIT closed();
}

bool KNResultFilterBar::event(QEvent *event)
{
    // The bar handles Escape before any shortcut does.
    if (event->type() == QEvent::ShortcutOverride && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        event->accept();
    return QWidget::event(event);
}

void KNResultFilterBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        showAllRows();
    else
        QWidget::keyPressEvent(event);
}

void KNResultFilterBar::apply()
{
    m_pause->stop();
    KNRowArrangement arrangement = m_model.arrangement();
    arrangement.filterText = m_field->text();
    arrangement.filterColumn = m_columns->currentIndex() - 1;
    if (arrangement != m_model.arrangement() || m_model.isArranging())
        m_model.arrange(arrangement);
}
