#pragma once

#include "Database/VantorDBC.h"
#include "UI/KNSharedUIExport.h"
#include "UI/Workspace/KNDocumentAction.h"
#include "UI/Workspace/KNDocumentState.h"
#include "UI/Workspace/KNDocumentStatus.h"

#include <QIcon>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

/// A document of a workspace: a query, a table designer and the like, shown as one tab of a window. The
/// window knows documents through this class alone. On the UI thread.
class KNSHAREDUI_EXPORT KNDocumentTab : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;
    ~KNDocumentTab() override;

    /// The text of the tab.
    virtual QString title() const = 0;
    /// The tab has no icon by default.
    virtual QIcon icon() const;
    /// The file that the document was read from or written to; null without one.
    virtual QString filePath() const;
    /// The settings with which a new query beside this document begins.
    virtual std::shared_ptr<const VantorDBC> databaseConnectionDetails() const = 0;
    virtual KNDocumentStatus status() const;
    /// Whether closing the document loses changes. The tab then shows a mark.
    virtual bool isModified() const;
    /// Whether the document is unchanged since its creation, so that an opened file may replace it.
    virtual bool isUnused() const;

    /// Asks the user everything necessary before the document closes. `proceed` is called, immediately or
    /// later, if it may close; it is not called if the user cancels.
    virtual void prepareToClose(std::function<void()> proceed);
    /// The same before the whole window closes. A document that is restored at the next start need not ask
    /// about unsaved content. Calls prepareToClose() by default.
    virtual void prepareToEndSession(std::function<void()> proceed);
    /// The state to restore the document at the next start or after a crash; empty, the default, for a
    /// document that is not restored. The id never changes.
    virtual std::optional<KNDocumentState> savedState() const;

    /// Whether the action is currently possible. False for all actions by default.
    virtual bool canPerform(KNDocumentAction action) const;
    /// Performs an action that canPerform() allows.
    virtual void perform(KNDocumentAction action);
    /// The text of a copy of this document; null, the default, for documents that cannot be copied.
    virtual QString textForCopy() const;
    /// Inserts a text at the cursor; false, the default, for documents that do not accept text.
    virtual bool insertText(const QString &text);

Q_SIGNALS:
    /// Title, icon, file or unsaved mark have changed.
    void titleChanged();
    /// The status or the possible actions have changed.
    void statusChanged();
    /// The result of savedState() has changed.
    void stateChanged();
};
