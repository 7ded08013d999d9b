#include "Desktop/Preferences/ShortcutsDialog.h"

#include "Foundation/KNFormat.h"
#include "UI/Dialogs/KNButtonOrder.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace {

QString textOf(const QList<QKeySequence> &shortcuts)
{
    QStringList texts;
    for (const QKeySequence &keys : shortcuts)
        texts.append(keys.toString(QKeySequence::NativeText));
    return texts.join(QStringLiteral("   "));
}

} // namespace

ShortcutsDialog::ShortcutsDialog(const ShortcutList &shortcuts, QWidget *parent)
    : QDialog(parent)
    , m_shortcuts(shortcuts)
    , m_list(new QTreeWidget)
    , m_keys(new QKeySequenceEdit)
    , m_add(new QPushButton(tr("&Add")))
    , m_remove(new QPushButton(tr("&Remove")))
    , m_note(new QLabel)
{
    setWindowTitle(tr("Keyboard Shortcuts"));
    arrange();
    connect(m_list, &QTreeWidget::currentItemChanged, this, [this] {
        m_keys->clear();
        update();
    });
    connect(m_keys, &QKeySequenceEdit::keySequenceChanged, this, &ShortcutsDialog::update);
    connect(m_add, &QPushButton::clicked, this, &ShortcutsDialog::addShortcut);
    connect(m_remove, &QPushButton::clicked, this, [this] {
        m_shortcuts.clear(currentEntry());
        update();
    });
    fill();
}

/// The field reports a change when it loses the focus, which it also does in the end.
ShortcutsDialog::~ShortcutsDialog()
{
    m_keys->disconnect(this);
}

void ShortcutsDialog::arrange()
{
    m_list->setAccessibleName(tr("Actions"));
    m_list->setHeaderLabels({tr("Action"), tr("Shortcuts")});
    m_list->setAlternatingRowColors(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_keys->setAccessibleName(tr("New shortcut"));
    m_note->setAccessibleName(tr("Note"));
    m_note->setTextFormat(Qt::PlainText);
    m_note->setWordWrap(true);
    m_note->setMinimumHeight(2 * fontMetrics().lineSpacing());
    m_note->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    auto *const label = new QLabel(tr("&New shortcut:"));
    label->setBuddy(m_keys);
    for (QPushButton *const button : {m_add, m_remove})
        button->setAutoDefault(false);

    auto *const editing = new QHBoxLayout;
    editing->addWidget(label);
    editing->addWidget(m_keys, 1);
    editing->addWidget(m_add);
    editing->addWidget(m_remove);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel |
                                               QDialogButtonBox::RestoreDefaults);
    connect(buttons, &QDialogButtonBox::accepted, this, &ShortcutsDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ShortcutsDialog::reject);
    connect(buttons->button(QDialogButtonBox::RestoreDefaults), &QPushButton::clicked, this, [this] {
        m_shortcuts.restoreDefaults();
        update();
    });
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addLayout(editing);
    layout->addWidget(m_note);
    layout->addWidget(buttons);
    KNOrderButtons(*this);
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().lineSpacing() * 36);
}

void ShortcutsDialog::fill()
{
    QTreeWidgetItem *group = nullptr;
    for (const ShortcutEntry &entry : m_shortcuts.entries()) {
        if (!group || group->text(0) != entry.group) {
            group = new QTreeWidgetItem(m_list, {entry.group});
            group->setFlags(Qt::ItemIsEnabled);
        }
        m_items.append(new QTreeWidgetItem(group, {entry.title}));
    }
    m_list->expandAll();
    m_list->setCurrentItem(m_items.value(0));
    update();
}

qsizetype ShortcutsDialog::currentEntry() const
{
    return m_items.indexOf(m_list->currentItem());
}

void ShortcutsDialog::update()
{
    const QList<ShortcutEntry> &entries = m_shortcuts.entries();
    for (qsizetype i = 0; i < entries.size(); ++i) {
        m_items[i]->setText(1, textOf(entries[i].shortcuts));
        QFont font = m_list->font();
        font.setBold(entries[i].shortcuts != entries[i].defaults);
        m_items[i]->setFont(1, font);
    }
    const qsizetype current = currentEntry();
    const bool canChange = current >= 0 && !entries[current].isFixed;
    const QKeySequence keys = m_keys->keySequence();
    const qsizetype other = m_shortcuts.conflict(keys, current);
    const bool isTaken = other >= 0 && entries[other].isFixed;
    m_keys->setEnabled(canChange);
    m_add->setEnabled(canChange && !keys.isEmpty() && !isTaken);
    m_remove->setEnabled(canChange && !entries[current].shortcuts.isEmpty());
    if (current >= 0 && !canChange)
        m_note->setText(tr("This shortcut cannot be changed."));
    else if (isTaken)
        m_note->setText(KNFormat(tr("%@ is used by \"%@\" and cannot be changed."),
                                 keys.toString(QKeySequence::NativeText), entries[other].title));
    else if (other >= 0)
        m_note->setText(KNFormat(tr("%@ is used by \"%@\". Adding it here removes it there."),
                                 keys.toString(QKeySequence::NativeText), entries[other].title));
    else
        m_note->clear();
}

void ShortcutsDialog::addShortcut()
{
    if (!m_shortcuts.add(currentEntry(), m_keys->keySequence()))
        return;
    m_keys->clear();
    update();
}

void ShortcutsDialog::accept()
{
    m_shortcuts.save();
    QDialog::accept();
}
