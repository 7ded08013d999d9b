#include "EditorScreenshots.h"

#include "Autocomplete/KNAutocompleteHelper.h"
#include "Autocomplete/KNCompletionCatalog.h"
#include "Desktop/Main/DocumentTabs.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Query/QueryTab.h"
#include "Screenshot.h"
#include "UI/Completion/KNCompletionPopup.h"
#include "UI/Completion/KNEditorCompletion.h"
#include "UI/Completion/KNEditorSignature.h"
#include "UI/Completion/KNSignaturePopup.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Snippets/KNSnippetStore.h"
#include "UI/Snippets/KNSnippetsDialog.h"

#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QToolTip>

namespace {

/// A picture of the window with what floats above it.
void saveWith(QWidget &window, QWidget *popup, const QString &folder, const char *name)
{
    if (!popup || !popup->isVisible()) {
        std::fprintf(stderr, "%s: nothing floats above the editor.\n", name);
        std::exit(1);
    }
    QPixmap picture = window.grab();
    QPainter(&picture).drawPixmap(window.mapFromGlobal(popup->pos()), popup->grab());
    const QString path = QStringLiteral("%1/%2.png").arg(folder, QString::fromLatin1(name));
    if (!picture.save(path))
        std::exit(1);
}

QWidget *toolTip()
{
    const auto widgets = QApplication::topLevelWidgets();
    for (QWidget *const widget : widgets) {
        if (widget->inherits("QTipLabel") && widget->isVisible())
            return widget;
    }
    return nullptr;
}

} // namespace

void EditorScreenshots::take(MainWindow &window, const QString &folder)
{
    window.newQuery();
    auto *const query = qobject_cast<QueryTab *>(window.currentDocument());
    query->changeDatabase(QStringLiteral("shop"));
    Screenshot::waitFor("names", [&] {
        const auto details = query->databaseConnectionDetails();
        const auto catalog = details->sharedAutocompleteHelper()->catalogForConnection(*details);
        return details->database() == QStringLiteral("shop") && catalog && !catalog->databases.isEmpty();
    });
    window.activateWindow();
    query->editor()->setFocus();
    query->setText(QStringLiteral(
        "SELECT o.OrderId, c.\nFROM Orders o\nJOIN Customers c ON c.CustomerId = o.CustomerId"));
    query->editor()->selectRange({20, 0});
    query->completion()->open();
    saveWith(window, const_cast<KNCompletionPopup *>(query->completion()->popup()), folder, "completion");
    query->completion()->close();
    query->setText(QStringLiteral("\n\n\nSELECT DATEADD"));
    query->editor()->selectRange({17, 0});
    QTest::keyClicks(query->editor(), QStringLiteral("(day,"));
    saveWith(window, const_cast<KNSignaturePopup *>(query->signature()->popup()), folder, "signature");
    query->setText(QStringLiteral("\n\n\nc"));
    query->editor()->selectRange({4, 0});
    query->completion()->open();
    saveWith(window, const_cast<KNCompletionPopup *>(query->completion()->popup()), folder, "snippets");
    query->completion()->close();
    query->setText(QStringLiteral("SELECT o.OrderId, o.OrderedAt\nFROM Orders o\nWHERE o.CustomerId = 1"));
    query->editor()->selectRange({7, 0});
    query->perform(KNDocumentAction::Rename);
    Screenshot::save(&window, folder, "rename");
    query->editor()->setFocus();
    KNSnippetsDialog dialog(*KNSnippetStore::forSettings(*query->databaseConnectionDetails()));
    dialog.show();
    Screenshot::waitFor("snippets", [&] { return dialog.findChild<QPlainTextEdit *>()->isEnabled(); });
    Screenshot::save(&dialog, folder, "snippets-dialog");
    query->setText(QStringLiteral("SELECT o.OrderId, o.Status\nFROM Orders o"));
    const auto x = query->editor()->SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, 39L);
    const auto height = query->editor()->SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL);
    const QPoint name(static_cast<int>(x), static_cast<int>(height * 3 / 2)); // the table in the second line
    QWidget *const viewport = query->editor()->viewport();
    QHelpEvent rest(QEvent::ToolTip, name, viewport->mapToGlobal(name));
    QCoreApplication::sendEvent(viewport, &rest);
    Screenshot::waitFor("a tool tip", [] { return QToolTip::isVisible(); });
    saveWith(window, toolTip(), folder, "hover");
    QToolTip::hideText();
    query->setText(QString());
}
