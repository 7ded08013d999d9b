#include "UI/Rename/KNEditorRename.h"

#include "Foundation/KNFormat.h"
#include "SQL/Scope/KNSQLName.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "UI/Completion/KNEditorLanguage.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Rename/KNRenameField.h"

#include <algorithm>

KNEditorRename::KNEditorRename(std::shared_ptr<KNEditorLanguage> language)
    : QObject(language->editor())
    , m_language(std::move(language))
    , m_editor(m_language->editor())
{
    connect(m_editor, &KNSQLEditor::textChanged, this, &KNEditorRename::close);
}

void KNEditorRename::begin()
{
    if (m_editor->isReadOnly())
        return;
    m_rename = KNFindSQLRename(m_language->tokens(), m_editor->selectedRange().location);
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
    const KNSQLDialect &language = m_language->dialect();
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
        return isVariable ? name : m_language->settings()->quotedName(name);
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
    const QRect line = m_language->lineOf(m_editor->selectedRange().location);
    return {m_editor->viewport()->mapFromGlobal(line.topLeft()), line.size()};
}
