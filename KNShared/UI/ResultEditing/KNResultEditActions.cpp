#include "UI/ResultEditing/KNResultEditActions.h"

#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "RowEditing/KNEditRowHelper.h"
#include "RowEditing/ResultSetViewControllerHelper.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/KNPlainToolTip.h"
#include "UI/KNPreferences.h"
#include "UI/ResultEditing/KNApplyRowChanges.h"
#include "UI/ResultEditing/KNEditedRowCursor.h"
#include "UI/ResultEditing/KNEditedRowForm.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/ResultEditing/KNRowEditBar.h"
#include "UI/ResultEditing/KNValueEditor.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"

#include <QAction>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPointer>

#include <algorithm>

namespace {

constexpr qint64 LargestFile = 64 * 1024 * 1024; // bytes

/// The bytes of a file; empty with a sentence for the user.
std::optional<QByteArray> bytesOf(const QString &path, QString *problem)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *problem = file.errorString();
        return std::nullopt;
    }
    const QByteArray bytes = file.read(LargestFile + 1);
    if (file.error() != QFile::NoError)
        *problem = file.errorString();
    else if (bytes.size() > LargestFile)
        *problem = KNFormat(KNResultEditActions::tr("It has more than %lld MB."), LargestFile >> 20);
    if (!problem->isEmpty())
        return std::nullopt;
    return bytes.isNull() ? QByteArray("") : bytes;
}

} // namespace

KNResultEditActions::KNResultEditActions(KNResultSection &section, KNResultEditing &editing, QMenu *menu,
                                         QLabel *state)
    : QObject(&section)
    , m_section(section)
    , m_editing(editing)
    , m_bar(new KNRowEditBar(editing, &section))
    , m_state(state)
{
    QMenu *const edit = menu->addMenu(tr("E&dit"));
    const auto canEdit = [this] { return m_editing.isEditable(); };
    const auto canEditCell = [this] { return m_editing.canEdit(current()); };
    const auto canUndo = [this] { return m_editing.isEditable() && m_editing.edits().canUndo(); };
    const auto canApply = [this] { return hasEdits(); };
    add(
        edit, tr("Edit &Value"), Qt::Key_F2, [this] { m_section.grid()->edit(current()); }, canEditCell);
    add(
        edit, tr("Edit &in Window…"), Qt::SHIFT | Qt::Key_F2, [this] { editInWindow(current()); },
        [this] { return canEditInWindow(current()); });
    add(
        edit, tr("Edit Ro&w…"), Qt::CTRL | Qt::SHIFT | Qt::Key_F2, [this] { editRow(); }, canEdit);
    add(
        edit, tr("Set to &NULL"), Qt::CTRL | Qt::Key_0, [this] { setSelectionToNull(); }, canEdit);
    add(
        edit, tr("&Load Value from File…"), {}, [this] { loadValue(); },
        [this] {
            return m_editing.canEdit(current()) &&
                   m_editing.inputOf(current().column()) == KNTypedValue::Input::Binary;
        });
    add(
        edit, tr("&Paste"), QKeySequence::Paste, [this] { paste(); }, canEdit);
    edit->addSeparator();
    add(
        edit, tr("&Add Row"), Qt::CTRL | Qt::Key_Insert, [this] { addRow(); }, canEdit);
    add(
        edit, tr("D&elete Rows…"), Qt::CTRL | Qt::Key_Delete, [this] { removeSelectedRows(); }, canEdit);
    edit->addSeparator();
    add(
        edit, tr("&Undo"), QKeySequence::Undo, [this] { m_editing.undo(); }, canUndo);
    add(
        edit, tr("Apply &Changes"), Qt::CTRL | Qt::Key_Return, [this] { apply(); }, canApply);
    add(
        edit, tr("&Discard Changes…"), {}, [this] { discard(); }, canApply);

    connect(m_bar, &KNRowEditBar::applyRequested, this, &KNResultEditActions::apply);
    connect(m_bar, &KNRowEditBar::discardRequested, this, &KNResultEditActions::discard);
    connect(&editing, &KNResultEditing::changed, this, &KNResultEditActions::update);
    connect(menu, &QMenu::aboutToShow, this, &KNResultEditActions::update);
    connectGrid();
    update();
}

void KNResultEditActions::connectGrid()
{
    KNResultGridView *const grid = m_section.grid();
    connect(grid, &KNResultGridView::pasteRequested, this, &KNResultEditActions::paste);
    connect(grid, &KNResultGridView::undoRequested, &m_editing, &KNResultEditing::undo);
    connect(grid, &KNResultGridView::editRequested, this, [this](const QModelIndex &cell, bool *isEdited) {
        *isEdited = KNValueEditor::suits(m_editing, cell);
        if (*isEdited)
            editInWindow(cell);
    });
    connect(new KNEditedRowCursor(*grid, m_editing), &KNEditedRowCursor::changedRowLeft, this, [this] {
        if (KNPreferences::current().sendsRowWhenLeft)
            apply();
    });
    grid->installEventFilter(this);
}

bool KNResultEditActions::canEditInWindow(const QModelIndex &cell) const
{
    return KNValueEditor::canEdit(m_editing, cell);
}

void KNResultEditActions::editInWindow(const QModelIndex &cell)
{
    if (!canEditInWindow(cell))
        return;
    auto *const editor = new KNValueEditor(m_editing, cell, m_section.window());
    editor->beginSheet([grid = QPointer(m_section.grid())](int) {
        if (grid)
            grid->setFocus();
    });
}

void KNResultEditActions::add(QMenu *menu, const QString &text, const QKeySequence &keys,
                              std::function<void()> triggered, std::function<bool()> isEnabled)
{
    // The keys are handled by the event filter; the menu only shows them.
    QAction *const action =
        menu->addAction(keys.isEmpty() ? text : text + u'\t' + keys.toString(QKeySequence::NativeText));
    connect(action, &QAction::triggered, this, std::move(triggered));
    m_entries.append({action, keys, std::move(isEnabled)});
}

void KNResultEditActions::update()
{
    for (const Entry &entry : std::as_const(m_entries))
        entry.action->setEnabled(entry.isEnabled());
    const bool isReadOnly = !m_editing.readOnlyReason().isEmpty();
    const QString text =
        isReadOnly ? KNFormat(tr("Read-only: %@"), m_editing.readOnlyReason()) : tr("Editable");
    m_state->setText(text);
    m_state->setToolTip(isReadOnly ? KNPlainToolTip(text)
                                   : tr("Double-click a value or press F2 to change it"));
    m_state->show();
}

QModelIndex KNResultEditActions::current() const
{
    return m_section.grid()->currentIndex();
}

bool KNResultEditActions::hasEdits() const
{
    return m_editing.isEditable() && !m_editing.edits().isEmpty();
}

bool KNResultEditActions::performKeys(const QKeySequence &keys)
{
    for (const Entry &entry : std::as_const(m_entries)) {
        if (entry.keys.isEmpty() || entry.keys != keys || !entry.isEnabled())
            continue;
        update();
        entry.action->trigger();
        return true;
    }
    return false;
}

bool KNResultEditActions::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress)
        return QObject::eventFilter(object, event);
    const auto *const key = static_cast<QKeyEvent *>(event);
    const QKeySequence keys(
        QKeyCombination(key->modifiers() & ~Qt::KeypadModifier,
                        key->key() == Qt::Key_Enter ? Qt::Key_Return : Qt::Key(key->key())));
    if (event->type() == QEvent::KeyPress)
        return performKeys(keys);
    const bool isMine = std::any_of(m_entries.begin(), m_entries.end(), [&](const Entry &entry) {
        return !entry.keys.isEmpty() && entry.keys == keys && entry.isEnabled();
    });
    if (isMine)
        event->accept();
    return isMine;
}

void KNResultEditActions::apply()
{
    m_section.grid()->setFocus(); // ends an editor
    if (hasEdits())
        KNApplyRowChanges(&m_section, m_editing);
}

void KNResultEditActions::discard()
{
    if (!hasEdits())
        return;
    const qsizetype count = m_editing.edits().changeCount();
    const KNAlerts::Question question{
        count == 1 ? tr("Discard the changes of 1 row?")
                   : KNFormat(tr("Discard the changes of %@ rows?"), KNCountText(count)),
        tr("They were not applied. This cannot be undone."),
        {tr("Keep Changes"), tr("Discard")}};
    KNAlerts::shared().ask(&m_section, question, [self = QPointer(this)](int button) {
        if (self && button == 1)
            self->m_editing.discard();
    });
}

QList<int> KNResultEditActions::selectedRows() const
{
    QList<int> rows;
    const QItemSelection selection = m_section.grid()->selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    if (rows.isEmpty() && current().isValid())
        rows.append(current().row());
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void KNResultEditActions::removeSelectedRows()
{
    const QList<int> rows = selectedRows();
    if (rows.isEmpty() || !m_editing.isEditable())
        return;
    const bool isOne = rows.size() == 1;
    const KNAlerts::Question question{
        isOne ? tr("Delete 1 row?") : KNFormat(tr("Delete %@ rows?"), KNCountText(rows.size())),
        isOne ? tr("It is deleted on the server when you apply the changes.")
              : tr("They are deleted on the server when you apply the changes."),
        {tr("Cancel"), tr("Delete")}};
    KNAlerts::shared().ask(&m_section, question, [self = QPointer(this), rows](int button) {
        if (self && button == 1)
            self->m_editing.removeRows(rows);
    });
}

void KNResultEditActions::addRow()
{
    m_editing.addRow();
    const int last = m_section.model().rowCount() - 1;
    const QList<int> columns = m_section.grid()->shownColumns();
    const auto first = std::find_if(columns.begin(), columns.end(), [this, last](int column) {
        return m_editing.canEdit(m_section.model().index(last, column));
    });
    if (first != columns.end())
        m_section.grid()->selectionModel()->setCurrentIndex(m_section.model().index(last, *first),
                                                            QItemSelectionModel::ClearAndSelect);
}

void KNResultEditActions::setSelectionToNull()
{
    QModelIndexList cells = m_section.grid()->selectionModel()->selectedIndexes();
    if (cells.isEmpty())
        cells.append(current());
    m_editing.setNull(cells);
}

void KNResultEditActions::paste()
{
    if (m_editing.isEditable())
        m_editing.paste(current(), QGuiApplication::clipboard()->text());
}

void KNResultEditActions::editRow()
{
    if (m_editing.isEditable() && current().isValid())
        KNOpenEditedRow(&m_section, m_editing, current().row());
}

void KNResultEditActions::loadValue()
{
    m_fileCell = current();
    KNFilePanels::shared().chooseFilesToOpen(&m_section,
                                             {tr("Load Value from File"), {}, {tr("All files (*)")}},
                                             [self = QPointer(this)](const QStringList &paths) {
                                                 if (self && !paths.isEmpty())
                                                     self->setValueFromFile(paths.first());
                                             });
}

void KNResultEditActions::setValueFromFile(const QString &path)
{
    KNDispatch::globalQueue([self = QPointer(this), path] {
        QString problem;
        const std::optional<QByteArray> bytes = bytesOf(path, &problem);
        KNDispatch::mainQueue([self, path, bytes, problem] {
            if (!self)
                return;
            if (bytes)
                self->m_editing.setValue(self->m_fileCell, KNValue(*bytes));
            else
                KNAlerts::shared().showMessage(&self->m_section,
                                               KNFormat(tr("The file %@ could not be read."), path), problem);
        });
    });
}
