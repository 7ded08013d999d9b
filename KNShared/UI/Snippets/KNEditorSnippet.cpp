#include "UI/Snippets/KNEditorSnippet.h"

#include "SQL/Snippets/KNExpandedSnippet.h"
#include "UI/Editor/KNEditorText.h"
#include "UI/Editor/KNSQLEditor.h"

#include <QKeyEvent>

KNEditorSnippet::KNEditorSnippet(KNSQLEditor *editor)
    : QObject(editor)
    , m_editor(editor)
{
    editor->installEventFilter(this);
    connect(editor, &QsciScintillaBase::SCN_MODIFIED, this,
            [this](int position, int kind, const char *, int length, int, int, int, int, int, int) {
                noteChange(position, kind, length);
            });
    connect(editor, &KNSQLEditor::cursorPositionChanged, this, &KNEditorSnippet::cursorMoved);
}

void KNEditorSnippet::insert(const KNRange &range, const QString &snippet)
{
    end();
    m_editor->selectRange({range.location, 0});
    const auto base = m_editor->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const int line = m_editor->cursorLine() - 1;
    const QString before = m_editor->text(line).left(m_editor->cursorColumn() - 1);
    qsizetype blanks = 0;
    while (blanks < before.size() && (before[blanks] == u' ' || before[blanks] == u'\t'))
        ++blanks;
    const auto expanded = KNExpandedSnippet::from(snippet, before.left(blanks), m_editor->lineEnd());
    m_editor->replaceRanges({{range, expanded.text}});
    const auto byteAt = [&](qsizetype location) {
        return base + static_cast<long>(KNEditorText::utf8Length(QStringView(expanded.text).left(location)));
    };
    QList<KNSnippetStops::Ranges> stops;
    for (const QList<KNRange> &places : expanded.stops) {
        KNSnippetStops::Ranges ranges;
        for (const KNRange &place : places)
            ranges.append({byteAt(place.location), byteAt(place.location + place.length)});
        stops.append(ranges);
    }
    m_stops.emplace(stops, KNSnippetStops::Range{base, byteAt(expanded.text.size())});
    show();
}

/// Selects the current stop, in all of its places. Nothing follows the last one.
void KNEditorSnippet::show()
{
    const KNSnippetStops::Ranges ranges = m_stops->current();
    if (m_stops->isLast())
        end();
    for (qsizetype index = 0; index < ranges.size(); ++index)
        m_editor->SendScintilla(index == 0 ? QsciScintillaBase::SCI_SETSELECTION
                                           : QsciScintillaBase::SCI_ADDSELECTION,
                                static_cast<unsigned long>(ranges[index].end), ranges[index].begin);
    m_editor->SendScintilla(QsciScintillaBase::SCI_SETMAINSELECTION, 0UL);
    m_editor->SendScintilla(QsciScintillaBase::SCI_SCROLLCARET);
}

void KNEditorSnippet::end()
{
    m_stops.reset();
}

void KNEditorSnippet::noteChange(int position, int kind, int length)
{
    if (!m_stops)
        return;
    if (kind & QsciScintillaBase::SC_MOD_INSERTTEXT)
        m_stops->noteInsertion(position, length);
    else if (kind & QsciScintillaBase::SC_MOD_DELETETEXT)
        m_stops->noteDeletion(position, length);
    if (m_stops->whole().begin == m_stops->whole().end) // undone, or another text
        end();
}

void KNEditorSnippet::cursorMoved()
{
    const auto caret = m_editor->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    if (m_stops && (caret < m_stops->whole().begin || caret > m_stops->whole().end))
        end();
}

bool KNEditorSnippet::performKey(int key, Qt::KeyboardModifiers modifiers)
{
    if (key == Qt::Key_Escape && modifiers == Qt::NoModifier) {
        end();
        if (m_editor->SendScintilla(QsciScintillaBase::SCI_GETSELECTIONS) > 1)
            m_editor->SendScintilla(QsciScintillaBase::SCI_CANCEL);
        return true;
    }
    const bool isBack = key == Qt::Key_Backtab || (key == Qt::Key_Tab && modifiers == Qt::ShiftModifier);
    if (!isBack && (key != Qt::Key_Tab || modifiers != Qt::NoModifier))
        return false;
    if (m_stops->move(isBack ? -1 : 1))
        show();
    return true;
}

bool KNEditorSnippet::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isActive() || !isKey)
        return QObject::eventFilter(watched, event);
    const auto *const key = static_cast<QKeyEvent *>(event);
    if (event->type() == QEvent::KeyPress)
        return performKey(key->key(), key->modifiers());
    if (key->key() != Qt::Key_Escape)
        return false;
    event->accept(); // before shortcuts of the window
    return true;
}
