#include "UI/Completion/KNEditorLanguage.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "UI/Editor/KNEditorText.h"
#include "UI/Editor/KNSQLEditor.h"

std::shared_ptr<KNEditorLanguage> KNEditorLanguage::create(KNSQLEditor *editor, Settings settings)
{
    const auto details = settings();
    const KNAutocompleteHelper *const helper = details ? details->sharedAutocompleteHelper() : nullptr;
    const KNSQLDialect *const dialect = helper ? helper->dialect() : nullptr;
    if (!dialect)
        return nullptr;
    return std::shared_ptr<KNEditorLanguage>(new KNEditorLanguage(editor, std::move(settings), *dialect));
}

KNEditorLanguage::KNEditorLanguage(KNSQLEditor *editor, Settings settings, const KNSQLDialect &dialect)
    : m_editor(editor)
    , m_settings(std::move(settings))
    , m_tokens(dialect)
{
}

const KNSQLTokens &KNEditorLanguage::tokens()
{
    m_tokens.setText(m_editor->wholeText());
    return m_tokens;
}

KNNameReference::Catalog KNEditorLanguage::catalog() const
{
    const auto details = m_settings();
    return details->sharedAutocompleteHelper()->catalogForConnection(*details);
}

std::optional<KNNameReference> KNEditorLanguage::referenceAt(qsizetype location)
{
    return KNFindNameReference(tokens(), location, catalog());
}

QRect KNEditorLanguage::lineOf(qsizetype location) const
{
    const auto caret = m_editor->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const KNRange before{location, m_editor->selectedRange().location - location};
    const auto begin = caret - static_cast<long>(KNEditorText::utf8Length(m_editor->textOfRange(before)));
    const auto x = m_editor->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, begin);
    const auto y = m_editor->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, caret);
    const auto height = m_editor->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL);
    const QPoint corner = m_editor->viewport()->mapToGlobal(QPoint(static_cast<int>(x), static_cast<int>(y)));
    return {corner, QSize(1, static_cast<int>(height))};
}

qsizetype KNEditorLanguage::locationAt(const QPoint &point) const
{
    const auto position =
        m_editor->SendScintilla(QsciScintillaBase::SCI_CHARPOSITIONFROMPOINTCLOSE,
                                static_cast<unsigned long>(point.x()), static_cast<long>(point.y()));
    return position < 0 ? -1 : KNEditorText::text(*m_editor, 0, position).size();
}
