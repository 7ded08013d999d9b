#include "UI/TableDesigner/MSSQLEditIndexWindowController.h"

#include "Foundation/KNDispatch.h"
#include "TableDesign/MSSQLAlterIndexQueryLoader.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/TableDesigner/MSSQLTableColumnDesignerViewController.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>

namespace {

constexpr int LongestIndexName = 128; // of an index, in characters
constexpr int ColumnSpacing = 2;
constexpr QSize InitialEditorSize(560, 420);

QBoxLayout *titledList(const QString &title, QListWidget *list)
{
    list->setSpacing(ColumnSpacing);
    auto *const label = new QLabel(title);
    label->setBuddy(list);
    auto *const layout = new QVBoxLayout;
    layout->addWidget(label);
    layout->addWidget(list);
    return layout;
}

/// A column in a list. A column dropped on another one goes before or after it.
QListWidgetItem *newItem(const QString &column)
{
    auto *const item = new QListWidgetItem(column);
    item->setFlags(item->flags() & ~Qt::ItemIsDropEnabled);
    return item;
}

} // namespace

MSSQLEditIndexWindowController::MSSQLEditIndexWindowController(MSSQLTableDesignSession &session,
                                                               const MSSQLIndexEntry &index, bool isNewIndex)
    : KNWindowController(session.window())
    , m_session(session)
    , m_unedited(index)
    , m_isNewIndex(isNewIndex)
    , m_name(new QLineEdit(index.indexName))
    , m_unique(new QCheckBox(tr("&Unique")))
    , m_clustered(new QCheckBox(tr("C&lustered")))
    , m_available(new QListWidget)
    , m_keys(new QListWidget)
    , m_add(newButton(tr("&Add →"), [this] { addColumnToIndex(); }))
    , m_remove(newButton(tr("← &Remove"), [this] { removeColumnFromIndex(); }))
    , m_up(newButton(tr("Move U&p"), [this] { moveColumn(-1); }))
    , m_down(newButton(tr("Move Do&wn"), [this] { moveColumn(1); }))
{
    setWindowTitle(isNewIndex ? tr("New Index") : tr("Edit Index"));
    m_name->setMaxLength(LongestIndexName);
    m_unique->setChecked(index.isUnique);
    m_clustered->setChecked(!index.isNonClustered);
    m_available->setAccessibleName(tr("Columns of the table"));
    m_keys->setAccessibleName(tr("Columns of the index"));
    m_keys->setDragDropMode(QAbstractItemView::InternalMove);
    addMoveShortcut(m_up, Qt::ALT | Qt::Key_Up, -1);
    addMoveShortcut(m_down, Qt::ALT | Qt::Key_Down, 1);
    m_add->setToolTip(tr("Add column to index"));
    m_remove->setToolTip(tr("Remove column from index"));

    auto *const moves = new QVBoxLayout;
    moves->addStretch(1);
    for (QPushButton *const button : {m_add, m_remove, m_up, m_down})
        moves->addWidget(button);
    moves->addStretch(1);
    auto *const lists = new QHBoxLayout;
    lists->addLayout(titledList(tr("&Columns of the table:"), m_available), 1);
    lists->addLayout(moves);
    lists->addLayout(titledList(tr("Columns of the &index:"), m_keys), 1);
    QDialogButtonBox *const buttons = makeButtons(tr("Apply…"));
    disconnect(buttons, &QDialogButtonBox::accepted, nullptr, nullptr);
    connect(buttons, &QDialogButtonBox::accepted, this, &MSSQLEditIndexWindowController::onAccept);
    auto *const layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addRow(tr("&Name:"), m_name);
    layout->addRow(QString(), m_unique);
    layout->addRow(QString(), m_clustered);
    layout->addRow(lists);
    layout->addRow(buttons);
    resize(InitialEditorSize);

    for (const MSSQLIndexColumnEntry &column : index.columns)
        m_keys->addItem(newItem(column.name));
    connect(m_keys->model(), &QAbstractItemModel::rowsMoved, this,
            &MSSQLEditIndexWindowController::updateButtons);
    for (QListWidget *const list : {m_available, m_keys})
        connect(list, &QListWidget::currentRowChanged, this, &MSSQLEditIndexWindowController::updateButtons);
    addListKeys(m_available, [this] { addColumnToIndex(); });
    addListKeys(m_keys, [this] { removeColumnFromIndex(); });
    updateButtons();
    loadColumns();
}

QPushButton *MSSQLEditIndexWindowController::newButton(const QString &title,
                                                       const std::function<void()> &clicked)
{
    auto *const button = new QPushButton(title);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, clicked);
    return button;
}

void MSSQLEditIndexWindowController::addMoveShortcut(QPushButton *button, QKeySequence keys, int by)
{
    connect(new QShortcut(keys, this), &QShortcut::activated, this, [this, by] { moveColumn(by); });
    button->setToolTip(keys.toString(QKeySequence::NativeText));
}

/// Uses a shortcut for Return: after itemActivated() a list passes the key on to the default button.
void MSSQLEditIndexWindowController::addListKeys(QListWidget *list, const std::function<void()> &moveCurrent)
{
    connect(list, &QListWidget::itemDoubleClicked, this, moveCurrent);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(key, list, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this,
                moveCurrent);
}

void MSSQLEditIndexWindowController::loadColumns()
{
    KNDispatch::globalQueue(
        [self = QPointer(this), table = m_session.table(), settings = m_session.settings()] {
            KNError error;
            const auto columns = MSSQLTableColumnDesignerViewController::loadTable(table.name, table.schema,
                                                                                   settings.get(), &error);
            KNDispatch::mainQueue([self, columns, error] {
                if (!self)
                    return;
                if (error)
                    KNAlerts::shared().showError(self, error);
                self->showColumns(columns);
            });
        });
}

void MSSQLEditIndexWindowController::showColumns(const QList<MSSQLColumnRecord> &columns)
{
    for (const MSSQLColumnRecord &column : columns) {
        if (m_keys->findItems(column.columnName, Qt::MatchFixedString).isEmpty())
            m_available->addItem(newItem(column.columnName));
    }
    updateButtons();
}

void MSSQLEditIndexWindowController::addColumnToIndex()
{
    const int row = m_available->currentRow();
    if (row < 0)
        return;
    m_keys->addItem(m_available->takeItem(row));
    m_keys->setCurrentRow(m_keys->count() - 1);
}

void MSSQLEditIndexWindowController::removeColumnFromIndex()
{
    const int row = m_keys->currentRow();
    if (row < 0)
        return;
    m_available->addItem(m_keys->takeItem(row));
    updateButtons();
}

void MSSQLEditIndexWindowController::moveColumn(int by)
{
    const int row = m_keys->currentRow();
    if (row < 0 || row + by < 0 || row + by >= m_keys->count())
        return;
    m_keys->insertItem(row + by, m_keys->takeItem(row));
    m_keys->setCurrentRow(row + by);
}

void MSSQLEditIndexWindowController::updateButtons()
{
    const int key = m_keys->currentRow();
    m_add->setEnabled(m_available->currentRow() >= 0);
    m_remove->setEnabled(key >= 0);
    m_up->setEnabled(key > 0);
    m_down->setEnabled(key >= 0 && key + 1 < m_keys->count());
}

MSSQLIndexEntry MSSQLEditIndexWindowController::editedIndex() const
{
    MSSQLIndexEntry index;
    index.indexName = m_name->text();
    index.isUnique = m_unique->isChecked();
    index.isNonClustered = !m_clustered->isChecked();
    for (int row = 0; row < m_keys->count(); ++row)
        index.columns.append({m_keys->item(row)->text()});
    return index;
}

void MSSQLEditIndexWindowController::onAccept()
{
    const MSSQLIndexEntry edited = editedIndex();
    if (edited.indexName.trimmed().isEmpty())
        return KNAlerts::shared().showMessage(this, tr("You must specify an index name."),
                                              tr("Index name is required."));
    if (edited.columns.isEmpty())
        return KNAlerts::shared().showMessage(this, tr("Please specify at least one column."),
                                              tr("You must specify at least one column."));
    if (edited == m_unedited)
        return endSheetWithReturnCode(0);
    const KNQueryPreview::Titles titles{tr("Alter index"),
                                        tr("The index will be modifed using the following queries."),
                                        tr("Apply"), tr("Performing changes")};
    const auto statements =
        std::make_shared<MSSQLAlterIndexQueryLoader>(m_session.table(), m_unedited, edited, m_isNewIndex);
    m_session.preview(this, titles, statements, QStringLiteral("MSSQLAlterIndex"), [self = QPointer(this)] {
        if (self)
            self->endSheetWithReturnCode(1);
    });
}
