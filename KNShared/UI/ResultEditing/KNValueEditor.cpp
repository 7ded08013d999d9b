#include "UI/ResultEditing/KNValueEditor.h"

#include "Foundation/KNFormat.h"
#include "UI/Editor/KNScintilla.h"
#include "UI/KNPreferences.h"
#include "UI/ResultEditing/KNResultEditing.h"
#include "UI/Results/KNCountText.h"
#include "UI/Results/KNResultTableModel.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr qsizetype DigitsPerLine = 64;
constexpr qsizetype LongestWrapped = 50'000; // an editor is slow to wrap longer texts

bool isTooLarge(const KNValue &value)
{
    return std::max(value.text().size(), value.bytes().size()) > KNValueEditor::LargestEdited;
}

/// "0x" and lines of hexadecimal digits.
QString hexLines(const QByteArray &bytes)
{
    const QString digits = QString::fromLatin1(bytes.toHex().toUpper());
    QStringList lines = {QStringLiteral("0x")};
    for (qsizetype start = 0; start < digits.size(); start += DigitsPerLine)
        lines.append(digits.mid(start, DigitsPerLine));
    return lines.join(u'\n');
}

QString withoutSpaces(QString text)
{
    text.removeIf([](QChar c) { return c.isSpace(); });
    return text;
}

void prepare(QsciScintilla &editor)
{
    const QPalette palette = editor.palette();
    editor.setAccessibleName(KNValueEditor::tr("Value"));
    editor.setUtf8(true);
    editor.setScrollWidth(1);
    editor.setScrollWidthTracking(true);
    editor.setMarginWidth(1, 0);
    editor.setFont(KNPreferences::current().editorFont);
    editor.setPaper(palette.color(QPalette::Base));
    editor.setColor(palette.color(QPalette::Text));
    editor.setCaretForegroundColor(palette.color(QPalette::Text));
    editor.setSelectionBackgroundColor(palette.color(QPalette::Highlight));
    editor.setSelectionForegroundColor(palette.color(QPalette::HighlightedText));
}

} // namespace

KNValueEditor::KNValueEditor(KNResultEditing &editing, const QModelIndex &cell, QWidget *parent)
    : KNWindowController(parent)
    , m_editing(&editing)
    , m_cell(cell)
    , m_editor(new QsciScintilla(this))
    , m_remark(new QLabel(this))
{
    setWindowTitle(KNFormat(tr("Edit %@, row %@"), editing.model().shownName(cell.column()),
                            KNCountText(cell.row() + 1)));
    prepare(*m_editor);
    m_editor->installEventFilter(this);
    m_remark->setTextFormat(Qt::PlainText);
    m_remark->setWordWrap(true);
    m_remark->hide();
    QDialogButtonBox *const buttons = makeButtons(tr("&Apply"));
    m_apply = acceptButton(*buttons);
    m_apply->setToolTip(tr("Put the value into the row (Ctrl+Return). The server gets it when you apply the "
                           "changes of the rows."));
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(m_editor, 1);
    layout->addWidget(m_remark);
    layout->addWidget(buttons);
    const QFontMetrics metrics(m_editor->font());
    resize(metrics.horizontalAdvance(u'0') * 90, metrics.height() * 24);

    const KNValue value = editing.value(cell);
    if (isTooLarge(value)) {
        show({});
        m_editor->setReadOnly(true);
        m_apply->setEnabled(false);
        say(tr("The value is too large to be edited here."));
    } else {
        const bool isBinary = editing.inputOf(cell.column()) == KNTypedValue::Input::Binary;
        show(isBinary ? hexLines(value.bytes()) : value.displayText());
    }
    m_editor->setFocus();
}

bool KNValueEditor::canEdit(const KNResultEditing &editing, const QModelIndex &cell)
{
    const KNTypedValue::Input input = editing.inputOf(cell.column());
    return editing.canEdit(cell) &&
           (input == KNTypedValue::Input::Text || input == KNTypedValue::Input::Binary);
}

bool KNValueEditor::suits(const KNResultEditing &editing, const QModelIndex &cell)
{
    if (!canEdit(editing, cell))
        return false;
    const KNValue value = editing.value(cell);
    const QString text = value.text();
    return std::max(text.size(), value.bytes().size()) > LongestInGrid || text.contains(u'\n') ||
           text.contains(u'\r');
}

QString KNValueEditor::remark() const
{
    return m_remark->text();
}

void KNValueEditor::say(const QString &remark)
{
    m_remark->setText(remark);
    m_remark->setVisible(!remark.isEmpty());
}

/// A text that the editor would alter, such as one with NUL characters, cannot be edited.
void KNValueEditor::show(const QString &text)
{
    m_editor->setEolMode(text.contains(QLatin1String("\r\n")) ? QsciScintilla::EolWindows
                                                              : QsciScintilla::EolUnix);
    m_editor->setText(text);
    m_editor->setModified(false);
    m_editor->setWrapMode(text.size() <= LongestWrapped ? QsciScintilla::WrapWord : QsciScintilla::WrapNone);
    if (m_editor->text() == text)
        return;
    m_editor->setReadOnly(true);
    m_apply->setEnabled(false);
    say(tr("The text has characters that this editor cannot show, so it cannot be edited here."));
}

bool KNValueEditor::store()
{
    if (!m_editor->isModified())
        return true;
    const KNTypedValue::Input input = m_editing ? m_editing->inputOf(m_cell.column()) : KNTypedValue::Input();
    const QString text = m_editor->text();
    QString problem;
    const auto value = KNTypedValue::read(input == KNTypedValue::Input::Binary ? withoutSpaces(text) : text,
                                          input, &problem);
    if (value && m_editing && m_editing->setValue(m_cell, *value))
        return true;
    say(problem.isEmpty() ? tr("The result cannot be edited now.") : problem);
    return false;
}

void KNValueEditor::done(int code)
{
    if (code != 1 || closed() || store())
        KNWindowController::done(code);
}

/// The editor would keep these keys for itself.
bool KNValueEditor::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return KNWindowController::eventFilter(object, event);
    const QKeyCombination keys = static_cast<QKeyEvent *>(event)->keyCombination();
    const bool applies = keys == (Qt::CTRL | Qt::Key_Return);
    if (applies)
        m_apply->click();
    else if (keys == QKeyCombination(Qt::Key_Escape))
        reject();
    else
        return KNWindowController::eventFilter(object, event);
    return true;
}
