#pragma once

#include "UI/Workspace/KNDocumentState.h"

#include <QLockFile>
#include <QObject>
#include <QPointer>

#include <memory>

class KNDocumentTab;
class QTimer;

/// Remembers the documents of one connection while the user works with them, in files below the XDG state
/// folder, so that they are restored at the next start, also after a crash. Writes in the background, at most
/// a second behind. Programs that have the same connection open at once have files of their own. On the UI
/// thread.
class TabSession : public QObject
{
    Q_OBJECT

public:
    /// Milliseconds between a change and the writing of it.
    static constexpr int WriteDelay = 1000;
    /// Milliseconds until what could not be written is tried again.
    static constexpr int RetryDelay = 10'000;

    explicit TabSession(const QString &connectionId, QObject *parent = nullptr);
    /// Writes what is not written yet.
    ~TabSession() override;

    /// The documents of the last session in their order, without damaged files. Read by the constructor.
    QList<KNDocumentState> storedTabs() const { return m_stored; }
    /// From now on these documents are remembered, in this order, and no others. Those without a saved state
    /// are skipped.
    void setTabs(const QList<KNDocumentTab *> &tabs);
    /// Writes what is not written yet before it returns; false when something could not be written. For the
    /// program's end, before the tabs go.
    bool flush();

Q_SIGNALS:
    /// What could not be written is tried again every RetryDelay. Emitted at the first failure and at the
    /// first success after one.
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
    QList<QPointer<KNDocumentTab>> m_tabs;
    QList<QPointer<KNDocumentTab>> m_changed;
    QStringList m_ids; ///< of the documents, or of the stored ones before the first setTabs()
    QTimer *m_timer;
    bool m_hasFailed = false;
    std::shared_ptr<Writer> m_writer; ///< shared with the work in the background
};
