#include "UI/Editor/KNEditorFormatting.h"

#include "Database/VantorDBC.h"
#include "Foundation/KNDispatch.h"
#include "SQL/Format/KNSQLFormatter.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/KNPreferences.h"

#include <QPointer>

#include <algorithm>

namespace {

qsizetype countOfInk(QStringView text)
{
    return std::count_if(text.begin(), text.end(), [](QChar unit) { return !unit.isSpace(); });
}

/// The position before the character that follows so many others, blanks not counted.
qsizetype positionBehindInk(QStringView text, qsizetype count)
{
    qsizetype position = 0;
    for (; position < text.size(); ++position)
        if (!text[position].isSpace() && count-- == 0)
            return position;
    return position;
}

} // namespace

KNEditorFormatting::KNEditorFormatting(KNSQLEditor *editor, Settings settings)
    : QObject(editor)
    , m_editor(editor)
    , m_settings(std::move(settings))
{
    connect(editor, &KNSQLEditor::textChanged, this, [this] { ++m_generation; });
}

void KNEditorFormatting::format()
{
    const QString text = m_editor->wholeText();
    const KNRange selection = m_editor->selectedRange();
    const bool isSelection = selection.length > 0;
    const KNRange part = isSelection ? selection : KNRange{0, text.size()};
    KNDispatch::globalQueue([text, part, isSelection, details = m_settings(), generation = ++m_generation,
                             style = KNPreferences::current().formatStyle, self = QPointer(this)] {
        const QString formatted = KNSQLFormatter::formatted(text, part, *details, style);
        KNDispatch::mainQueue([=] {
            if (self && self->m_generation == generation && formatted != text.mid(part.location, part.length))
                self->apply(part, formatted, isSelection);
        });
    });
}

void KNEditorFormatting::apply(const KNRange &part, const QString &formatted, bool isSelection)
{
    const qsizetype caret = m_editor->selectedRange().location;
    const qsizetype inkBeforeCaret = countOfInk(m_editor->textOfRange({part.location, caret}));
    m_editor->replaceRanges({{part, formatted}});
    if (isSelection)
        m_editor->selectRange({part.location, formatted.size()});
    else
        m_editor->selectRange({positionBehindInk(formatted, inkBeforeCaret), 0});
}
