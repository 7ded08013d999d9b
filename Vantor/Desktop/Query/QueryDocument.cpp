#include "Desktop/Query/QueryDocument.h"

#include "UI/Alerts/KNAlerts.h"
#include "UI/Alerts/KNFilePanels.h"
#include "UI/Editor/KNSQLEditor.h"

#include <QFileInfo>
#include <QPointer>

QueryDocument::QueryDocument(KNSQLEditor *editor)
    : QObject(editor)
    , m_editor(editor)
    , m_untitledName(tr("Query"))
{
    connect(editor, &KNSQLEditor::modificationChanged, this, &QueryDocument::titleChanged);
}

bool QueryDocument::open(const QString &path, KNError *error)
{
    QString text;
    if (!m_file.read(path, &text, error))
        return false;
    m_editor->setWholeText(text);
    Q_EMIT titleChanged();
    Q_EMIT pathChanged(filePath());
    return true;
}

QString QueryDocument::title() const
{
    return filePath().isNull() ? m_untitledName : QFileInfo(filePath()).fileName();
}

void QueryDocument::setUntitledName(const QString &name)
{
    m_untitledName = name;
    Q_EMIT titleChanged();
}

bool QueryDocument::isModified() const
{
    return m_editor->isModified();
}

void QueryDocument::restore(const QString &path, const QString &text, bool isModified)
{
    KNError ignored;
    QString onDisk;
    // Needed for the file's encoding, and to detect later changes.
    const bool isReadable = !path.isEmpty() && m_file.read(path, &onDisk, &ignored);
    if (isModified && !path.isEmpty() && !isReadable)
        m_file.setPath(path);
    const QString before = isReadable || isModified ? onDisk : text;
    m_editor->setWholeText(before);
    if (isModified) // so that undo restores the file's text
        m_editor->replaceRanges({{{0, before.size()}, text}});
    Q_EMIT titleChanged();
}

void QueryDocument::save(std::function<void()> saved)
{
    if (filePath().isNull()) {
        saveAs(std::move(saved));
        return;
    }
    if (!m_file.hasChangedOnDisk()) {
        write(m_file, saved);
        return;
    }
    const KNAlerts::Question question{tr("%1 was changed by another program.").arg(title()),
                                      tr("Saving replaces what is in the file now by the text of this tab."),
                                      {tr("Cancel"), tr("Replace")}};
    KNAlerts::shared().ask(m_editor, question, [document = QPointer(this), saved](int button) {
        if (document && button == 1)
            document->write(document->m_file, saved);
    });
}

void QueryDocument::saveAs(std::function<void()> saved)
{
    KNFilePanels::Request request;
    request.title = tr("Save Query");
    request.suggestedName = filePath().isNull() ? m_untitledName + QStringLiteral(".sql") : filePath();
    request.filters = {tr("SQL scripts (*.sql)"), tr("All files (*)")};
    KNFilePanels::shared().chooseFileToSave(
        m_editor, request, [document = QPointer(this), saved = std::move(saved)](const QString &path) {
            if (!document)
                return;
            TextFile file = document->m_file;
            file.setPath(QFileInfo(path).absoluteFilePath());
            document->write(file, saved);
        });
}

void QueryDocument::write(const TextFile &file, const std::function<void()> &saved)
{
    TextFile written = file;
    KNError error;
    if (!written.write(m_editor->wholeText(), &error)) {
        KNAlerts::shared().showError(m_editor, error);
        return;
    }
    const bool isNew = written.path() != m_file.path();
    m_file = written;
    m_editor->setModified(false);
    Q_EMIT titleChanged();
    if (isNew)
        Q_EMIT pathChanged(filePath());
    if (saved)
        saved();
}
