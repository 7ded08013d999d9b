#include "UI/Names/KNEditorNames.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNQueryLoading.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Workspace/KNWorkspace.h"

#include <QMenu>
#include <QMouseEvent>
#include <QPointer>

KNEditorNames::KNEditorNames(std::shared_ptr<KNEditorLanguage> language)
    : QObject(language->editor())
    , m_language(std::move(language))
    , m_editor(m_language->editor())
{
    m_editor->viewport()->installEventFilter(this);
    connect(m_editor, &KNSQLEditor::contextMenuAboutToShow, this, &KNEditorNames::addToMenu);
}

bool KNEditorNames::perform(KNDocumentAction action)
{
    switch (action) {
    case KNDocumentAction::GoToDefinition:
        goToDefinition(m_editor->selectedRange().location);
        return true;
    case KNDocumentAction::ShowColumns:
        showColumns(m_editor->selectedRange().location);
        return true;
    case KNDocumentAction::ReloadNames:
        reload();
        return true;
    default:
        return false;
    }
}

void KNEditorNames::addToMenu(QMenu *menu, qsizetype location)
{
    if (!m_language->referenceAt(location))
        return;
    menu->addSeparator();
    menu->addAction(tr("Go to &Definition"), this, [this, location] { goToDefinition(location); });
    menu->addAction(tr("Show Columns and &Keys"), this, [this, location] { showColumns(location); });
}

/// Ctrl+click goes to the definition of a name. Elsewhere it adds a cursor, as the component does.
bool KNEditorNames::eventFilter(QObject *watched, QEvent *event)
{
    const bool isPress = event->type() == QEvent::MouseButtonPress;
    if (!isPress && event->type() != QEvent::MouseButtonRelease)
        return QObject::eventFilter(watched, event);
    const auto *const mouse = static_cast<QMouseEvent *>(event);
    const qsizetype pressed = std::exchange(m_pressed, -1);
    if (mouse->button() != Qt::LeftButton || mouse->modifiers() != Qt::ControlModifier)
        return QObject::eventFilter(watched, event);
    const qsizetype location = m_language->locationAt(mouse->pos());
    if (location < 0 || !m_language->referenceAt(location))
        return QObject::eventFilter(watched, event);
    if (isPress)
        m_pressed = location;
    else if (location == pressed)
        goToDefinition(location);
    return true;
}

void KNEditorNames::goToDefinition(qsizetype location)
{
    const auto reference = m_language->referenceAt(location);
    if (!reference)
        return showNotice(tr("There is no name at the cursor."));
    if (reference->location >= 0)
        m_editor->selectRange({reference->location, 0});
    else if (reference->kind == KNNameReference::Kind::Function)
        showNotice(reference->signature.text);
    else
        open(*reference, &VantorDBC::createDefinitionLoader, false);
}

void KNEditorNames::showColumns(qsizetype location)
{
    const auto reference = m_language->referenceAt(location);
    if (!reference)
        return showNotice(tr("There is no name at the cursor."));
    open(*reference, &VantorDBC::createColumnsLoader, true);
}

/// Opens a text about the object that the reference means.
void KNEditorNames::open(const KNNameReference &reference, Create create, bool executes)
{
    QStringList path = reference.path;
    if (path.isEmpty())
        return showNotice(KNFormat(tr("%@ is no object of the database."), reference.name));
    if (path.size() > 3)
        return showNotice(KNFormat(tr("%@ is on another server."), path.join(u'.')));
    const VantorDBCPtr details = m_language->settings()->copy();
    if (path.size() == 3)
        details->setDatabase(path.takeFirst());
    const Loader loader = (details.get()->*create)(path);
    if (!loader)
        return;
    using Use = KNWorkspace::QueryUse;
    const Use use = executes ? Use::Execute : Use::Show;
    const auto show = [self = QPointer(this), details, use,
                       title = path.last()](const QString &text, const KNQueryReport &report) {
        if (!self)
            return;
        if (text.isNull())
            return self->showNotice(report.failure.localizedDescription());
        if (KNWorkspace *const workspace = KNWorkspace::of(*self->m_editor))
            workspace->openQueryText(report.guardedText(text), details,
                                     report.needsAttention() ? Use::Show : use, title);
    };
    KNQueryLoading::load(loader, *details, show);
}

void KNEditorNames::reload()
{
    const auto details = m_language->settings();
    if (details->database().isEmpty())
        return showNotice(tr("Choose a database before its names are loaded again."));
    details->sharedAutocompleteHelper()->requestEntriesForDatabaseConnectionDetails(*details, true);
    showNotice(KNFormat(tr("The names of %@ are loaded again."), details->database()));
}

void KNEditorNames::showNotice(const QString &text) const
{
    if (KNWorkspace *const workspace = KNWorkspace::of(*m_editor))
        workspace->showNotice(text);
}
