#pragma once

#include "Database/VantorDBC.h"
#include "Desktop/Session/QueryHistoryEntry.h"
#include "Desktop/Session/TabState.h"
#include "Foundation/KNError.h"

#include <QWidget>

#include <functional>

class DatabaseBox;
class KNFindBar;
class KNResultsPane;
class KNSQLEditor;
class MessagesView;
class QSplitter;
class QTabWidget;
class QueryDocument;
class QueryRun;
class VantorTabConnection;
struct QueryRequest;

/// What the status line says about a tab.
struct QueryTabStatus
{
    QString database; ///< null while it is not known
    qint64 rowCount = 0;
    qint64 elapsedMilliseconds = 0; ///< of the run that goes on or was the last
    bool isRunning = false;
    bool hasOpenTransaction = false;

    friend bool operator==(const QueryTabStatus &, const QueryTabStatus &) = default;
};

/// One query tab: an editor, its results and messages, and a session of its own. On the UI thread.
class QueryTab : public QWidget
{
    Q_OBJECT

public:
    explicit QueryTab(const VantorDBC &details, QWidget *parent = nullptr);
    /// Stops what runs and closes the session, in the background.
    ~QueryTab() override;

    QString text() const;
    /// Replaces the text of an empty, unnamed tab; the tab counts as unmodified.
    void setText(const QString &text);
    void insertText(const QString &text);
    /// False with an error when the file cannot be read; the tab is as before then.
    bool openFile(const QString &path, KNError *error);
    /// Null while the text was neither opened from a file nor saved to one.
    QString filePath() const;
    /// What the tab is called: the file's name, or "Query 3".
    QString title() const;
    void setUntitledName(const QString &name);
    bool isModified() const;
    /// Whether nothing has been done with the tab: it has no text and no file.
    bool isUnused() const;
    /// Saves, asking for a file where there is none; `saved` is called when that has been done.
    void save(std::function<void()> saved = {});
    void saveAs(std::function<void()> saved = {});
    /// Asks what has to be asked before the tab goes: about what runs, a transaction, unsaved text. `proceed`
    /// is called when it may go.
    void prepareToClose(std::function<void()> proceed);
    /// The same before the program ends: unsaved text is no matter when it comes back at the next start.
    void prepareToEndSession(std::function<void()> proceed);
    /// The settings, with the database that the tab's last run has ended in.
    std::shared_ptr<const VantorDBC> databaseConnectionDetails() const;

    bool isRunning() const;
    QueryTabStatus status() const;
    /// What is to come back after a crash or at the next start.
    TabState state() const;
    void restore(const TabState &state);

    /// For what the menus offer: undo, comments, lines, zoom.
    KNSQLEditor *editor() const { return m_editor; }
    KNFindBar *findBar() const { return m_findBar; }
    KNResultsPane *resultsPane() const { return m_resultsPane; }
    MessagesView *messages() const { return m_messages; }
    DatabaseBox *databaseBox() const { return m_databaseBox; }

public Q_SLOTS:
    /// Runs the selection, or everything when nothing is selected.
    void run();
    /// Runs the batch in which the cursor stands.
    void runBatchAtCursor();
    void cancel();
    /// Hides the results and messages, or shows them again.
    void toggleResults();
    /// Goes from the editor to the results or messages that are in front, and back.
    void showNextPane();
    void changeDatabase(const QString &name);

Q_SIGNALS:
    /// Name, file or unsaved mark have changed.
    void titleChanged();
    void statusChanged(const QueryTabStatus &status);
    /// What state() gives has changed.
    void stateChanged();
    void runFinished(const QueryHistoryEntry &entry);

private:
    void arrange();
    void connectParts();
    void start(QueryRequest request);
    void tick();
    void finishRun();
    void showOutcome();
    void markError(const KNError &error);
    void endChangeOfDatabase(const QString &name, const QString &database, const KNError &error);
    void askAboutLostSession(const KNError &error, std::function<void()> proceed);
    void showDatabase(const QString &name);
    void newConnection(const VantorDBC &details);
    void releaseConnection();

    KNSQLEditor *const m_editor;
    QueryDocument *const m_document;
    KNFindBar *const m_findBar;
    DatabaseBox *const m_databaseBox;
    KNResultsPane *const m_resultsPane;
    MessagesView *const m_messages;
    QTabWidget *const m_resultTabs;
    QTimer *const m_ticker;
    std::shared_ptr<VantorTabConnection> m_connection;
    std::unique_ptr<QueryRun> m_run; ///< the one that goes on or was the last
    std::function<void()> m_afterChangeOfDatabase;
    QString m_id;
    QString m_database;
    QDateTime m_runBegan;
    bool m_isChangingDatabase = false;
    bool m_hasOpenTransaction = false;
    bool m_isEditedSinceRun = false;
    bool m_showsRows = false; ///< the run has given a result with columns
};
