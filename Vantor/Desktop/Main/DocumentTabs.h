#pragma once

#include "UI/Workspace/KNDocumentTab.h"

#include <QPointer>
#include <QTabWidget>

/// The tabs of a window's documents. On the UI thread.
class DocumentTabs : public QTabWidget
{
    Q_OBJECT

public:
    explicit DocumentTabs(QWidget *parent = nullptr);

    /// In the order of the tabs.
    QList<KNDocumentTab *> documents() const;
    /// Null if no tab is open.
    KNDocumentTab *currentDocument() const;

    /// Inserts a document, which belongs to the tabs from now on; -1 appends it.
    void insertDocument(int index, KNDocumentTab *document);
    /// Removes and deletes a document without asking.
    void removeDocument(KNDocumentTab *document);
    /// Asks what must be answered before the document is closed, and removes it.
    void closeDocument(KNDocumentTab *document);
    /// Asks one document after the other. `proceed` is called once all of them agree.
    void prepareToEndSession(std::function<void()> proceed);
    /// Shows the tab `offset` places to the right of the one in front; the last tab is followed by the first.
    void showAdjacent(int offset);

Q_SIGNALS:
    /// Documents were added, removed or moved.
    void documentsChanged();
    /// Another document is current, or the status of the current one has changed.
    void currentStatusChanged();

private:
    void updateTab(KNDocumentTab *document);
    void askNext(const QList<QPointer<KNDocumentTab>> &toAsk, const std::function<void()> &proceed);
};
