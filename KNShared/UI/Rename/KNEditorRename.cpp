#include "UI/Rename/KNEditorRename.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Database/VantorDBC.h"
#include "Foundation/KNFormat.h"
#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Rename/KNRenameField.h"

#include <algorithm>

KNEditorRename::KNEditorRename(KNSQLEditor *editor, Settings settings)
    : QObject(editor)
    , m_editor(editor)
    , m_settings(std::move(settings))
{
    connect(editor, &KNSQLEditor::textChanged, this, &KNEditorRename::close);
}

const KNSQLDialect *KNEditorRename::dialect() const
{
    const auto details = m_settings();
    const KNAutocompleteHelper *const helper = details ? details->sharedAutocompleteHelper() : nullptr;
    return helper ? helper->dialect() : nullptr;
}

void KNEditorRename::begin()
{
    if (!dialect() || m_editor->isReadOnly())
        return;
    KNSQLTokens tokens(*dialect());
    tokens.setText(m_editor->wholeText());
    m_rename = KNFindSQLRename(tokens, m_editor->selectedRange().location);
    if (m_rename.kind == KNSQLRename::Kind::None) {
        Q_EMIT refused(tr("There is no alias and no variable at the cursor."));
        return;
    }
    if (!m_field) {
        m_field = new KNRenameField(m_editor->viewport());
        connect(m_field, &KNRenameField::accepted, this, &KNEditorRename::rename);
        connect(m_field, &KNRenameField::closed, m_editor, qOverload<>(&KNSQLEditor::setFocus));
    }
    m_field->open(m_rename.name, m_rename.places.size(), lineOfCursor());
}

void KNEditorRename::close()
{
    if (m_field)
        m_field->hide();
}

QString KNEditorRename::written(const QString &typed, QString *problem) const
{
    const KNSQLDialect &language = *dialect();
    const bool isVariable = m_rename.kind == KNSQLRename::Kind::Variable;
    QString name = KNSQLName::withoutQuotes(typed.trimmed());
    if (isVariable && !name.startsWith(m_rename.name.front()))
        name.prepend(m_rename.name.front());
    const bool hasControl = std::any_of(name.begin(), name.end(),
                                        [](QChar unit) { return unit.category() == QChar::Other_Control; });
    if (name.isEmpty() || hasControl || name.size() > language.longestName ||
        (isVariable && !KNIsSQLVariable(KNSQLTokens(language), name)))
        *problem = tr("This is not a name.");
    else if (m_rename.taken.contains(name, Qt::CaseInsensitive))
        *problem = KNFormat(tr("%@ exists already."), name);
    else
        return isVariable ? name : m_settings()->quotedName(name);
    return QString();
}

void KNEditorRename::rename(const QString &typed)
{
    QString problem;
    const QString name = written(typed, &problem);
    if (name.isNull())
        return m_field->showProblem(problem);
    QList<KNSQLEditor::Replacement> replacements;
    for (const KNRange &place : std::as_const(m_rename.places))
        replacements.append({place, name});
    const KNRange chosen = m_rename.places[m_rename.chosen];
    qsizetype cursor = chosen.location + name.size();
    for (qsizetype index = 0; index < m_rename.chosen; ++index)
        cursor += name.size() - m_rename.places[index].length;
    m_editor->setFocus();
    m_editor->replaceRanges(replacements);
    m_editor->selectRange({cursor, 0});
}

QRect KNEditorRename::lineOfCursor() const
{
    const auto caret = m_editor->SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const auto x = m_editor->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, caret);
    const auto y = m_editor->SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, caret);
    const auto height = m_editor->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL);
    return {static_cast<int>(x), static_cast<int>(y), 1, static_cast<int>(height)};
}
