#pragma once

#include "UI/Workspace/KNDocumentState.h"

#include <QLockFile>
#include <QObject>
#include <QPointer>

#include <memory>

class KNDocumentTab;
class QTimer;

/// Saves the documents of one connection while the user works with them, in files below the XDG state folder,
/// so that they are restored at the next start, also after a crash. Writes in the background, with a delay of
/// a second at most. Programs that have the same connection open at once use separate files. On the UI
/// thread.
class TabSession : public QObject
{
    Q_OBJECT

public:
    /// Milliseconds between a change and its writing.
    static constexpr int WriteDelay = 1000;
    /// Milliseconds until a failed write is repeated.
    static constexpr int RetryDelay = 10'000;

    explicit TabSession(const QString &connectionId, QObject *parent = nullptr);
    /// Writes pending changes.
    ~TabSession() override;

    /// The documents of the last session in their order, without damaged files. Read by the constructor.
    QList<KNDocumentState> storedTabs() const { return m_stored; }
    /// The id of the one that was in front; null if not known.
    QString storedCurrentTab() const { return m_storedCurrent; }
    /// Sets the document in front, one of setTabs(); null for none.
    void setCurrentTab(KNDocumentTab *tab);
    /// Sets the documents to save from now on, in this order. Documents without a saved state are skipped.
    void setTabs(const QList<KNDocumentTab *> &tabs);
    /// Writes pending changes before it returns; false if a write failed. For the program's end, before the
    /// tabs are destroyed.
    bool flush();

Q_SIGNALS:
    /// A write failed (true); it is repeated every RetryDelay. Emitted at the first failure and at the first
    /// success after it.
    void writingFailed(bool failed);

private:
    struct Writer;

    void openFolder(const QString &connectionId);
    void markChanged(KNDocumentTab *tab);
    void collect();
    void write();
    void finishWriting(bool succeeded);

    QString m_folder;
    std::unique_ptr<QLockFile> m_lock;
    QList<KNDocumentState> m_stored;
    QString m_storedCurrent;
    QPointer<KNDocumentTab> m_current;
    QList<QPointer<KNDocumentTab>> m_tabs;
    QList<QPointer<KNDocumentTab>> m_changed;
    QStringList m_ids; ///< of the documents; before the first setTabs() of the stored ones
    QTimer *m_timer;
    bool m_hasFailed = false;
    std::shared_ptr<Writer> m_writer; ///< shared with background work
};
