#include "UI/Editor/KNTextCommands.h"

#include "UI/Editor/KNEditorText.h"
#include "UI/Editor/KNSQLEditor.h"

#include <algorithm>

namespace {

/// A selection, in bytes.
struct ByteSelection
{
    long anchor;
    long caret;

    long begin() const { return std::min(anchor, caret); }
    long end() const { return std::max(anchor, caret); }
};

QList<ByteSelection> selectionsOf(const KNSQLEditor &editor)
{
    QList<ByteSelection> selections;
    const auto count = static_cast<unsigned long>(editor.SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS));
    for (unsigned long index = 0; index < count; ++index)
        selections.append({editor.SendScintilla(QsciScintillaBase::SCI_GETSELECTIONNANCHOR, index),
                           editor.SendScintilla(QsciScintillaBase::SCI_GETSELECTIONNCARET, index)});
    return selections;
}

void select(KNSQLEditor &editor, const QList<ByteSelection> &selections, long main)
{
    for (qsizetype index = 0; index < selections.size(); ++index)
        editor.SendScintilla(index == 0 ? QsciScintillaBase::SCI_SETSELECTION
                                        : QsciScintillaBase::SCI_ADDSELECTION,
                             static_cast<unsigned long>(selections[index].caret), selections[index].anchor);
    editor.SendScintilla(QsciScintillaBase::SCI_SETMAINSELECTION, static_cast<unsigned long>(main));
}

/// The word at a position; empty if there is none.
ByteSelection wordAt(const KNSQLEditor &editor, long position)
{
    const auto at = static_cast<unsigned long>(position);
    return {editor.SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, at, 1L),
            editor.SendScintilla(QsciScintillaBase::SCI_WORDENDPOSITION, at, 1L)};
}

QString upperCase(const QString &text)
{
    return text.toUpper();
}

QString lowerCase(const QString &text)
{
    return text.toLower();
}

/// Other letters can need more or fewer bytes: selections behind them are moved.
void convert(KNSQLEditor &editor, QString (*converted)(const QString &))
{
    if (editor.isReadOnly())
        return;
    QList<ByteSelection> selections = selectionsOf(editor);
    const auto main = editor.SendScintilla(QsciScintillaBase::SCI_GETMAINSELECTION);
    QList<ByteSelection> parts;
    for (const ByteSelection &selection : selections)
        parts.append(selection.begin() < selection.end() ? selection : wordAt(editor, selection.caret));
    std::sort(parts.begin(), parts.end(),
              [](const ByteSelection &a, const ByteSelection &b) { return a.begin() > b.begin(); });
    editor.beginUndoAction();
    for (const ByteSelection &part : parts) {
        const QString before = KNEditorText::text(editor, part.begin(), part.end());
        const QString after = converted(before);
        if (after == before)
            continue;
        const QByteArray bytes = after.toUtf8();
        const long growth = static_cast<long>(bytes.size()) - (part.end() - part.begin());
        editor.SendScintilla(QsciScintillaBase::SCI_SETTARGETRANGE, static_cast<unsigned long>(part.begin()),
                             part.end());
        editor.SendScintilla(QsciScintillaBase::SCI_REPLACETARGET, static_cast<unsigned long>(bytes.size()),
                             bytes.constData());
        for (ByteSelection &selection : selections) {
            for (long *const position : {&selection.anchor, &selection.caret})
                *position += *position >= part.end() ? growth : 0;
        }
    }
    editor.endUndoAction();
    select(editor, selections, main);
}

/// Exchanges two neighbouring groups of lines; the line end between them stays in its place.
void exchange(KNSQLEditor &editor, const KNRange &upper, const KNRange &lower)
{
    const qsizetype between = upper.location + upper.length;
    const QString moved = editor.textOfRange(lower) +
                          editor.textOfRange({between, lower.location - between}) + editor.textOfRange(upper);
    editor.replaceRanges({{{upper.location, lower.location + lower.length - upper.location}, moved}});
}

} // namespace

void KNTextCommands::convertToUpperCase(KNSQLEditor &editor)
{
    convert(editor, upperCase);
}

void KNTextCommands::convertToLowerCase(KNSQLEditor &editor)
{
    convert(editor, lowerCase);
}

void KNTextCommands::moveLinesUp(KNSQLEditor &editor)
{
    const KNSQLEditor::Lines lines = editor.selectedLines();
    if (lines.first == 0 || editor.isReadOnly())
        return;
    const KNRange selection = editor.selectedRange();
    const KNRange above = editor.rangeOfLines({lines.first - 1, lines.first - 1});
    const KNRange moved = editor.rangeOfLines(lines);
    exchange(editor, above, moved);
    editor.selectRange({selection.location - (moved.location - above.location), selection.length});
}

void KNTextCommands::moveLinesDown(KNSQLEditor &editor)
{
    const KNSQLEditor::Lines lines = editor.selectedLines();
    if (lines.last + 1 >= editor.lines() || editor.isReadOnly())
        return;
    const KNRange selection = editor.selectedRange();
    const KNRange moved = editor.rangeOfLines(lines);
    const KNRange below = editor.rangeOfLines({lines.last + 1, lines.last + 1});
    const qsizetype distance = below.location + below.length - (moved.location + moved.length);
    exchange(editor, moved, below);
    editor.selectRange({selection.location + distance, selection.length});
}

void KNTextCommands::duplicate(KNSQLEditor &editor)
{
    editor.SendScintilla(QsciScintillaBase::SCI_SELECTIONDUPLICATE);
}
