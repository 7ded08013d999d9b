#include "UI/TableDesigner/MSSQLDesignerListView.h"

#include "Catalog/MSSQLColumnRecord.h"
#include "Foundation/KNFormat.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int RowPadding = 6;
constexpr int ColumnPadding = 12;

} // namespace

MSSQLDesignerListView::MSSQLDesignerListView(MSSQLTableDesignSession &session, const QString &name,
                                             const QStringList &headers, QWidget *parent)
    : QWidget(parent)
    , m_session(session)
    , m_list(new QTreeWidget)
    , m_notice(new QLabel)
    , m_buttons(new QHBoxLayout)
{
    m_list->setAccessibleName(name);
    m_list->setHeaderLabels(headers);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    setFocusProxy(m_list);
    m_list->setAlternatingRowColors(true);
    m_notice->setTextFormat(Qt::PlainText);
    m_notice->setWordWrap(true);
    m_notice->hide();
    m_buttons->addStretch(1);
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(m_buttons);
    layout->addWidget(m_notice);
    layout->addWidget(m_list, 1);
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &MSSQLDesignerListView::updateButtons);
    connect(&m_session, &MSSQLTableDesignSession::busyChanged, this, &MSSQLDesignerListView::updateButtons);
    connect(&m_session, &MSSQLTableDesignSession::tableChanged, this, [this] { load(); });
}

QPushButton *MSSQLDesignerListView::addButton(const QString &title, bool needsRow,
                                              const std::function<void()> &clicked)
{
    auto *const button = new QPushButton(title);
    m_buttons->insertWidget(m_buttons->count() - 1, button);
    (needsRow ? m_needRow : m_always).append(button);
    connect(button, &QPushButton::clicked, this, clicked);
    updateButtons();
    return button;
}

int MSSQLDesignerListView::currentRow() const
{
    const QList<QTreeWidgetItem *> selected = m_list->selectedItems();
    return selected.isEmpty() ? -1 : m_list->indexOfTopLevelItem(selected.first());
}

KNError MSSQLDesignerListView::errorWithoutTable(const MSSQLDesignedTable &table, const VantorDBC &settings,
                                                 const char *errorDomain)
{
    KNError error;
    const auto columns = MSSQLCatalogReader::records<MSSQLColumnRecord>(settings, table.schema, table.name,
                                                                        errorDomain, &error);
    if (error || !columns.isEmpty())
        return error;
    return KNError(QString::fromLatin1(errorDomain), 0,
                   KNFormat(tr("The table %@.%@ was not found, or you have no right to see it."),
                            table.schema, table.name));
}

void MSSQLDesignerListView::updateButtons()
{
    const bool isReady = !m_session.isBusy();
    for (QPushButton *const button : std::as_const(m_always))
        button->setEnabled(isReady);
    for (QPushButton *const button : std::as_const(m_needRow))
        button->setEnabled(isReady && currentRow() >= 0);
}

void MSSQLDesignerListView::showRows(const QList<QStringList> &rows, const KNError &error,
                                     const QString &emptyText)
{
    const int row = currentRow();
    m_list->clear();
    const int last = m_list->columnCount() - 1;
    for (const QStringList &texts : rows)
        (new QTreeWidgetItem(m_list, texts))
            ->setSizeHint(last, QSize(0, fontMetrics().height() + RowPadding));
    for (int column = 0; column < last; ++column) {
        m_list->resizeColumnToContents(column);
        m_list->setColumnWidth(column, m_list->columnWidth(column) + ColumnPadding);
    }
    if (row >= 0 && !rows.isEmpty())
        m_list->setCurrentItem(m_list->topLevelItem(std::min(row, static_cast<int>(rows.size()) - 1)));
    m_notice->setText(error ? error.localizedDescription() : emptyText);
    m_notice->setVisible(rows.isEmpty());
    updateButtons();
}
