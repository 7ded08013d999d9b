#include "Desktop/Session/QueryHistoryDialog.h"

#include "Database/VantorDBC.h"
#include "Desktop/Session/QueryHistoryModel.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Editor/KNSQLEditor.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QTreeView>

QueryHistoryDialog::QueryHistoryDialog(const QueryHistory &history, const VantorDBC &details, QWidget *parent)
    : QDialog(parent)
    , m_history(history)
    , m_model(new QueryHistoryModel(this))
    , m_filter(new QSortFilterProxyModel(this))
    , m_search(new QLineEdit)
    , m_list(new QTreeView)
    , m_preview(new KNSQLEditor)
    , m_insert(new QPushButton(tr("&Insert")))
    , m_open(new QPushButton(tr("Open in &New Tab")))
    , m_remove(new QPushButton(tr("&Delete All…")))
{
    setWindowTitle(tr("Query History"));
    m_preview->setDialect(details.tokenizerOptions(), details.keywords(), details.functions(),
                          details.dataTypes());
    m_filter->setSourceModel(m_model);
    m_filter->setFilterKeyColumn(0);
    m_filter->setFilterRole(QueryHistoryModel::SearchRole);
    m_filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    arrange();
    connect(m_search, &QLineEdit::textChanged, this, [this](const QString &text) {
        m_filter->setFilterFixedString(text);
        m_list->setCurrentIndex(m_filter->index(0, 0));
        showCurrent();
    });
    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &QueryHistoryDialog::showCurrent);
    connect(m_list, &QTreeView::activated, this, [this] { use(&QueryHistoryDialog::newTabRequested); });
    connect(m_open, &QPushButton::clicked, this, [this] { use(&QueryHistoryDialog::newTabRequested); });
    connect(m_insert, &QPushButton::clicked, this, [this] { use(&QueryHistoryDialog::insertRequested); });
    connect(m_remove, &QPushButton::clicked, this, &QueryHistoryDialog::askForRemoval);
    load();
}

void QueryHistoryDialog::arrange()
{
    auto *const searchLabel = new QLabel(tr("&Search:"));
    searchLabel->setBuddy(m_search);
    m_search->setAccessibleName(tr("Search the history"));
    m_search->setPlaceholderText(tr("Text, database or error"));
    m_search->setClearButtonEnabled(true);
    m_list->setAccessibleName(tr("Queries"));
    m_list->setModel(m_filter);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setAllColumnsShowFocus(true);
    m_preview->setAccessibleName(tr("Text of the query"));
    m_preview->setReadOnly(true);
    m_preview->setCaretLineVisible(false);

    auto *const searching = new QHBoxLayout;
    searching->addWidget(searchLabel);
    searching->addWidget(m_search);
    auto *const splitter = new QSplitter(Qt::Vertical);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(m_list);
    splitter->addWidget(m_preview);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->addButton(m_open, QDialogButtonBox::ActionRole);
    buttons->addButton(m_insert, QDialogButtonBox::ActionRole);
    buttons->addButton(m_remove, QDialogButtonBox::ResetRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(searching);
    layout->addWidget(splitter, 1);
    layout->addWidget(buttons);
    m_open->setDefault(true);
    resize(fontMetrics().averageCharWidth() * 120, fontMetrics().height() * 36);
    m_search->setFocus();
}

void QueryHistoryDialog::load()
{
    m_isLoaded = false;
    m_history.load([dialog = QPointer(this)](const QList<QueryHistoryEntry> &entries) {
        if (!dialog)
            return;
        dialog->m_isLoaded = true;
        dialog->m_model->setEntries(entries);
        for (int column = 0; column < QueryHistoryModel::Text; ++column)
            dialog->m_list->resizeColumnToContents(column);
        dialog->m_list->setCurrentIndex(dialog->m_filter->index(0, 0));
        dialog->showCurrent();
    });
}

QString QueryHistoryDialog::currentText() const
{
    const QModelIndex index = m_filter->mapToSource(m_list->currentIndex());
    return index.isValid() ? m_model->entry(index.row()).text : QString();
}

void QueryHistoryDialog::showCurrent()
{
    const QString text = currentText();
    m_preview->setReadOnly(false);
    m_preview->setWholeText(text);
    m_preview->setReadOnly(true);
    m_insert->setEnabled(!text.isEmpty());
    m_open->setEnabled(!text.isEmpty());
    m_remove->setEnabled(m_model->rowCount() > 0);
}

void QueryHistoryDialog::use(void (QueryHistoryDialog::*signal)(const QString &))
{
    const QString text = currentText();
    if (text.isEmpty())
        return;
    Q_EMIT(this->*signal)(text);
    accept();
}

void QueryHistoryDialog::askForRemoval()
{
    const KNAlerts::Question question{tr("Delete the history of this connection?"),
                                      tr("All %1 queries are forgotten.").arg(m_model->rowCount()),
                                      {tr("Cancel"), tr("Delete All")}};
    KNAlerts::shared().ask(this, question, [dialog = QPointer(this)](int button) {
        if (!dialog || button != 1)
            return;
        dialog->m_history.removeAll([dialog](const KNError &error) {
            if (!dialog)
                return;
            if (error)
                KNAlerts::shared().showError(dialog, error);
            dialog->load();
        });
    });
}
