#include "Desktop/Main/DocumentTabMenu.h"

#include "Desktop/Main/DocumentTabs.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QMenu>

void fillDocumentTabMenu(QMenu &menu, DocumentTabs &tabs, KNDocumentTab &document)
{
    const auto text = [](const char *title) { return DocumentTabs::tr(title); };
    const auto add = [&](const char *title, bool isEnabled, const std::function<void()> &perform) {
        menu.addAction(text(title), &document, perform)->setEnabled(isEnabled);
    };
    const QList<KNDocumentTab *> documents = tabs.documents();
    QList<KNDocumentTab *> others = documents;
    others.removeAll(&document);
    const QList<KNDocumentTab *> toTheRight = documents.mid(documents.indexOf(&document) + 1);

    add(QT_TRANSLATE_NOOP("DocumentTabs", "&Close"), true,
        [&tabs, &document] { tabs.closeDocuments({&document}); });
    add(QT_TRANSLATE_NOOP("DocumentTabs", "Close &Others"), !others.isEmpty(),
        [&tabs, others] { tabs.closeDocuments(others); });
    add(QT_TRANSLATE_NOOP("DocumentTabs", "Close to the &Right"), !toTheRight.isEmpty(),
        [&tabs, toTheRight] { tabs.closeDocuments(toTheRight); });
    add(QT_TRANSLATE_NOOP("DocumentTabs", "Reopen C&losed"), tabs.hasClosedDocuments(),
        [&tabs] { Q_EMIT tabs.reopenRequested(); });
    menu.addSeparator();
    add(QT_TRANSLATE_NOOP("DocumentTabs", "&Duplicate"), !document.textForCopy().isNull(),
        [&tabs, &document] { Q_EMIT tabs.duplicateRequested(&document); });
    add(QT_TRANSLATE_NOOP("DocumentTabs", "Move to New &Window"), tabs.canMove(document),
        [&tabs, &document] { Q_EMIT tabs.newWindowRequested(&document); });
    add(QT_TRANSLATE_NOOP("DocumentTabs", "Copy &Path"), !document.filePath().isNull(),
        [&document] { QApplication::clipboard()->setText(QDir::toNativeSeparators(document.filePath())); });
    add(QT_TRANSLATE_NOOP("DocumentTabs", "Reco&nnect"), document.canPerform(KNDocumentAction::Reconnect),
        [&document] { document.perform(KNDocumentAction::Reconnect); });
}
