#include "UI/Editor/KNEditorSurrounding.h"

#include "SQL/Scope/KNSQLTokens.h"
#include "UI/Completion/KNEditorLanguage.h"
#include "UI/Editor/KNSQLEditor.h"

#include <QMenu>

namespace {

QString indentationOf(const QString &text)
{
    qsizetype length = 0;
    while (length < text.size() && (text[length] == u' ' || text[length] == u'\t'))
        ++length;
    return text.left(length);
}

bool separatesBatches(const KNSQLDialect &dialect, const QString &text)
{
    KNSQLTokens tokens(dialect);
    tokens.setText(text);
    for (qsizetype index = 0; index < tokens.size(); ++index) {
        if (tokens.isBatchSeparator(index))
            return true;
    }
    return false;
}

} // namespace

KNEditorSurrounding::KNEditorSurrounding(std::shared_ptr<KNEditorLanguage> language)
    : QObject(language->editor())
    , m_language(std::move(language))
    , m_editor(m_language->editor())
{
}

void KNEditorSurrounding::choose()
{
    const QList<KNSQLSurrounding> &surroundings = m_language->dialect().surroundings;
    if (surroundings.isEmpty() || m_editor->isReadOnly())
        return;
    const KNRange lines = m_editor->rangeOfLines(m_editor->selectedLines());
    if (separatesBatches(m_language->dialect(), m_editor->textOfRange(lines))) {
        Q_EMIT refused(tr("The lines contain the end of a batch and cannot be surrounded."));
        return;
    }
    auto *const menu = new QMenu(m_editor);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const KNSQLSurrounding &surrounding : surroundings)
        menu->addAction(surrounding.title, this, [this, surrounding] { surround(surrounding); });
    menu->setActiveAction(menu->actions().first());
    const QRect line = m_language->lineOf(m_editor->selectedRange().location);
    menu->popup({line.left(), line.top() + line.height()});
}

void KNEditorSurrounding::surround(const KNSQLSurrounding &surrounding)
{
    const KNSQLEditor::Lines lines = m_editor->selectedLines();
    const KNRange selection = m_editor->selectedRange();
    const KNRange range = m_editor->rangeOfLines(lines);
    QString indentation;
    for (int line = lines.first; line <= lines.last && indentation.isEmpty(); ++line)
        indentation = indentationOf(m_editor->text(line));
    const auto linesOf = [&](const QString &text) {
        QStringList added = text.split(u'\n');
        for (QString &line : added)
            line.prepend(indentation);
        return added.join(m_editor->lineEnd());
    };
    const QString before = linesOf(surrounding.before) + m_editor->lineEnd();
    QString inner;
    qsizetype caret = 0;
    for (int line = lines.first; line <= lines.last; ++line) {
        const KNRange part = m_editor->rangeOfLines({line, line});
        const QString text = indented(line, m_editor->textOfRange(part));
        if (line == lines.first) // the cursor stays at its character
            caret = selection.location - part.location + text.size() - part.length;
        const qsizetype behind = part.location + part.length;
        const qsizetype next =
            line < lines.last ? m_editor->rangeOfLines({line + 1, line + 1}).location : behind;
        inner += text + m_editor->textOfRange({behind, next - behind});
    }
    m_editor->replaceRanges({{range, before + inner + m_editor->lineEnd() + linesOf(surrounding.behind)}});
    const qsizetype begin = range.location + before.size();
    m_editor->selectRange(selection.length > 0 ? KNRange{begin, inner.size()} : KNRange{begin + caret, 0});
}

/// A line that begins inside of a string or a quoted name stays as it is.
QString KNEditorSurrounding::indented(int line, const QString &text) const
{
    const KNSQLLineState::Piece piece = m_editor->stateBefore(line).piece;
    const bool isInName = piece == KNSQLLineState::QuotedName || piece == KNSQLLineState::BracketedName;
    const bool isOnlyLine = text.isEmpty() && m_editor->selectedRange().length == 0;
    if (piece == KNSQLLineState::String || isInName || (text.isEmpty() && !isOnlyLine))
        return text;
    return u'\t' + text;
}
