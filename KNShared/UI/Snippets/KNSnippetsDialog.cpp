#include "UI/Snippets/KNSnippetsDialog.h"

#include "Foundation/KNFormat.h"
#include "SQL/Snippets/KNSnippetFile.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Dialogs/KNButtonOrder.h"
#include "UI/Dialogs/KNCautionBar.h"
#include "UI/KNPreferences.h"
#include "UI/Snippets/KNSnippetStore.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSet>

#include <algorithm>

namespace {

const QString Level = QStringLiteral("    "); ///< of indentation, as it is typed: Tab leaves the field

QString replacedInFront(const QString &text, const QString &before, const QString &after)
{
    QStringList lines = text.split(u'\n');
    for (QString &line : lines) {
        qsizetype levels = 0;
        while (line.mid(levels * before.size(), before.size()) == before)
            ++levels;
        line = after.repeated(levels) + line.mid(levels * before.size());
    }
    return lines.join(u'\n');
}

bool isSnippetName(const QString &name)
{
    return !name.isEmpty() && std::all_of(name.begin(), name.end(),
                                          [](QChar unit) { return unit.isLetterOrNumber() || unit == u'_'; });
}

} // namespace

KNSnippetsDialog::KNSnippetsDialog(KNSnippetStore &store, QWidget *parent)
    : QDialog(parent)
    , m_store(store)
    , m_caution(new KNCautionBar)
    , m_list(new QListWidget)
    , m_name(new QLineEdit)
    , m_title(new QLineEdit)
    , m_text(new QPlainTextEdit)
    , m_add(new QPushButton(tr("&Add")))
    , m_remove(new QPushButton(tr("&Remove")))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel))
{
    setWindowTitle(tr("Snippets"));
    arrange();
    connect(m_list, &QListWidget::currentRowChanged, this, &KNSnippetsDialog::showCurrent);
    connect(m_name, &QLineEdit::textEdited, this, &KNSnippetsDialog::change);
    connect(m_title, &QLineEdit::textEdited, this, &KNSnippetsDialog::change);
    connect(m_text, &QPlainTextEdit::textChanged, this, &KNSnippetsDialog::change);
    connect(m_add, &QPushButton::clicked, this, &KNSnippetsDialog::add);
    connect(m_remove, &QPushButton::clicked, this, &KNSnippetsDialog::remove);
    fill(store.snippets());
    store.load([dialog = QPointer(this)](const KNError &error) {
        if (!dialog)
            return;
        dialog->m_isEditable = !error;
        dialog->fill(dialog->m_store.snippets());
        if (error)
            dialog->m_caution->setText(
                KNFormat(tr("%@\nThe original snippets are used. To change them, repair or remove the file."),
                         error.localizedDescription()));
    });
}

void KNSnippetsDialog::arrange()
{
    m_list->setAccessibleName(tr("Snippets"));
    m_name->setMaxLength(int(KNSnippetFile::LongestName));
    m_title->setMaxLength(int(KNSnippetFile::LongestName));
    m_text->setFont(KNPreferences::current().editorFont);
    m_text->setTabChangesFocus(true);
    m_text->setLineWrapMode(QPlainTextEdit::NoWrap);
    auto *const hint = new QLabel(tr("$1 and ${2:text} are tab stops, $0 is the last position of the "
                                     "cursor, $$ is a dollar sign. Four blanks indent a line."));
    hint->setTextFormat(Qt::PlainText);
    hint->setWordWrap(true);
    hint->setForegroundRole(QPalette::PlaceholderText);

    auto *const changes = new QHBoxLayout;
    changes->addWidget(m_add);
    changes->addWidget(m_remove);
    auto *const left = new QVBoxLayout;
    left->addWidget(m_list, 1);
    left->addLayout(changes);
    auto *const right = new QFormLayout;
    right->addRow(tr("&Name:"), m_name);
    right->addRow(tr("&Description:"), m_title);
    auto *const textLabel = new QLabel(tr("&Text:"));
    textLabel->setBuddy(m_text);
    auto *const fields = new QVBoxLayout;
    fields->addLayout(right);
    fields->addWidget(textLabel);
    fields->addWidget(m_text, 1);
    fields->addWidget(hint);
    auto *const columns = new QHBoxLayout;
    columns->addLayout(left, 2);
    columns->addLayout(fields, 5);
    auto *const restore = m_buttons->addButton(tr("Restore &Originals"), QDialogButtonBox::ResetRole);
    connect(restore, &QPushButton::clicked, this, &KNSnippetsDialog::restoreOriginals);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &KNSnippetsDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &KNSnippetsDialog::reject);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_caution);
    layout->addLayout(columns, 1);
    layout->addWidget(m_buttons);
    for (QPushButton *const button : {m_add, m_remove, restore})
        button->setAutoDefault(false);
    KNOrderButtons(*this);
    resize(fontMetrics().averageCharWidth() * 110, fontMetrics().lineSpacing() * 30);
}

void KNSnippetsDialog::fill(QList<KNSnippet> snippets)
{
    m_snippets = std::move(snippets);
    m_isFilling = true;
    const int row = std::max(0, m_list->currentRow());
    m_list->clear();
    for (const KNSnippet &snippet : std::as_const(m_snippets))
        m_list->addItem(snippet.name);
    m_isFilling = false;
    m_list->setCurrentRow(std::min(row, m_list->count() - 1));
    showCurrent();
}

void KNSnippetsDialog::showCurrent()
{
    if (m_isFilling)
        return;
    const int row = m_list->currentRow();
    const KNSnippet snippet = row >= 0 ? m_snippets[row] : KNSnippet();
    m_isFilling = true;
    m_name->setText(snippet.name);
    m_title->setText(snippet.title);
    m_text->setPlainText(replacedInFront(snippet.text, QStringLiteral("\t"), Level));
    m_isFilling = false;
    update();
}

void KNSnippetsDialog::change()
{
    const int row = m_list->currentRow();
    if (m_isFilling || row < 0)
        return;
    m_snippets[row] = {m_name->text(), m_title->text(),
                       replacedInFront(m_text->toPlainText(), Level, QStringLiteral("\t"))};
    m_list->item(row)->setText(m_name->text());
    update();
}

void KNSnippetsDialog::add()
{
    m_snippets.append(KNSnippet());
    m_list->addItem(QString());
    m_list->setCurrentRow(m_list->count() - 1);
    m_name->setFocus();
}

void KNSnippetsDialog::remove()
{
    const int row = m_list->currentRow();
    if (row < 0)
        return;
    m_snippets.removeAt(row);
    m_isFilling = true;
    delete m_list->takeItem(row);
    m_isFilling = false;
    showCurrent();
}

void KNSnippetsDialog::restoreOriginals()
{
    fill(m_store.originals());
}

/// Why the snippets cannot be saved; null if they can.
QString KNSnippetsDialog::problem() const
{
    QSet<QString> names;
    for (const KNSnippet &snippet : m_snippets) {
        if (!isSnippetName(snippet.name))
            return tr("The name of a snippet consists of letters, digits and underscores.");
        if (names.contains(snippet.name.toLower()))
            return KNFormat(tr("The name \"%@\" occurs twice."), snippet.name);
        names.insert(snippet.name.toLower());
        if (snippet.text.trimmed().isEmpty() || snippet.text.size() > KNSnippetFile::LongestText)
            return KNFormat(tr("The snippet \"%@\" has no text, or a text that is too long."), snippet.name);
    }
    if (m_snippets.size() > KNSnippetFile::MostSnippets)
        return tr("There are too many snippets.");
    return QString();
}

void KNSnippetsDialog::update()
{
    const bool hasCurrent = m_isEditable && m_list->currentRow() >= 0;
    for (QWidget *const field : {static_cast<QWidget *>(m_name), static_cast<QWidget *>(m_title),
                                 static_cast<QWidget *>(m_text), static_cast<QWidget *>(m_remove)})
        field->setEnabled(hasCurrent);
    const auto buttons = m_buttons->buttons();
    for (QAbstractButton *const button : buttons) {
        if (m_buttons->buttonRole(button) == QDialogButtonBox::ResetRole)
            button->setEnabled(m_isEditable && m_snippets != m_store.originals());
    }
    m_add->setEnabled(m_isEditable);
    const QString why = problem();
    if (m_isEditable)
        m_caution->setText(why);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(m_isEditable && why.isNull());
}

void KNSnippetsDialog::accept()
{
    if (!m_isEditable || !problem().isNull())
        return;
    m_buttons->setEnabled(false);
    m_store.save(m_snippets, [dialog = QPointer(this)](const KNError &error) {
        if (!dialog)
            return;
        dialog->m_buttons->setEnabled(true);
        if (error)
            KNAlerts::shared().showError(dialog, error);
        else
            dialog->QDialog::accept();
    });
}
