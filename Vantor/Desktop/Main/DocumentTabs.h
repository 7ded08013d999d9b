#pragma once

#include "UI/Workspace/KNDocumentTab.h"

#include <QPointer>
#include <QTabWidget>

class QLabel;
class TabCycle;

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
    /// Removes a document, which belongs to the caller from now on.
    void takeDocument(KNDocumentTab *document);
    /// Whether the document can go to another window. A designer uses its window.
    bool canMove(const KNDocumentTab &document) const;
    /// Asks what must be answered before the document is closed, and removes it.
    void closeDocument(KNDocumentTab *document);
    /// Closes one document after the other, until one does not agree.
    void closeDocuments(const QList<KNDocumentTab *> &toClose);
    /// Whether takeClosedDocument() has a state.
    bool hasClosedDocuments() const { return !m_closed.isEmpty(); }
    /// Removes and returns the state of the document that was closed last; empty if there is none.
    std::optional<KNDocumentState> takeClosedDocument();
    /// Asks one document after the other. `proceed` is called once all of them agree.
    void prepareToEndSession(std::function<void()> proceed);
    /// Shows the tab `offset` places to the right of the one in front; the last tab is followed by the first.
    void showAdjacent(int offset);
    /// Steps through the tabs in the order of their last use, until Ctrl is released.
    void showRecent(int offset);

Q_SIGNALS:
    /// Documents were added, removed or moved.
    void documentsChanged();
    /// Another document is current, or the status of the current one has changed.
    void currentStatusChanged();
    /// The user wants the document back that was closed last.
    void reopenRequested();
    void duplicateRequested(KNDocumentTab *document);
    /// The user wants the document in a window of its own.
    void newWindowRequested(KNDocumentTab *document);
    /// The user has dragged a tab to this position; it may be that of another connection.
    void documentDropped(KNDocumentTab *document, int index);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void tabInserted(int index) override;
    void tabRemoved(int index) override;

private:
    static constexpr qsizetype MostClosed = 20;

    void updateTitles();
    void updateTab(KNDocumentTab *document, const QString &title);
    void updateState(KNDocumentTab *document);
    void showMenu(const QPoint &position);
    void closeNext(const QList<QPointer<KNDocumentTab>> &toClose);
    void closeThen(KNDocumentTab *document, const std::function<void()> &proceed);
    void askNext(const QList<QPointer<KNDocumentTab>> &toAsk, const std::function<void()> &proceed);

    TabCycle *const m_cycle;
    QLabel *const m_hint;            ///< shown while there is no tab
    QList<KNDocumentState> m_closed; ///< the one closed last at the end
};
