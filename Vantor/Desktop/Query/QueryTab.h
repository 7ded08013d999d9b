#pragma once

#include "Database/KNQueryDetails.h"
#include "Database/VantorDBC.h"
#include "Desktop/Session/QueryHistoryEntry.h"
#include "Desktop/Session/TabState.h"
#include "Foundation/KNError.h"
#include "UI/Workspace/KNDocumentTab.h"

#include <functional>

class DatabaseBox;
class EditorCommands;
class ErrorMarks;
class KNCautionBar;
class KNEditorCompletion;
class KNEditorSignature;
class KNFindBar;
class KNResultsPane;
class KNSQLEditor;
class MessagesView;
class QTimer;
class QueryDocument;
class QueryResults;
class QueryRun;
class QuerySession;
class SyntaxCheck;
class TransactionBar;
struct QueryRequest;

/// A query: an editor, its results and messages, and its own session. On the UI thread.
class QueryTab : public KNDocumentTab
{
    Q_OBJECT

public:
    /// The kind of its saved state.
    static const QString Kind;

    explicit QueryTab(const VantorDBC &details, QWidget *parent = nullptr);
    /// Stops the current run and closes the session in the background.
    ~QueryTab() override;

    QString text() const;
    /// Replaces the text of an empty, unnamed tab; the tab counts as unmodified.
    void setText(const QString &text);
    /// False with an error if the file cannot be read; the tab is unchanged then.
    bool openFile(const QString &path, KNError *error);
    void setUntitledName(const QString &name);
    bool isRunning() const;
    /// The state that is restored after a crash or at the next start.
    TabState state() const;
    void restore(const TabState &state);

    /// Null if the text was neither opened from a file nor saved to one.
    QString filePath() const override;
    /// The file's name, or a name such as "Query 3".
    QString title() const override;
    bool isModified() const override;
    bool isUnused() const override;
    /// Asks the user about a running query, an open transaction and unsaved text.
    void prepareToClose(std::function<void()> proceed) override;
    /// Does not ask about unsaved text that is restored at the next start.
    void prepareToEndSession(std::function<void()> proceed) override;
    /// The settings, with the database that was current at the end of the last run.
    std::shared_ptr<const VantorDBC> databaseConnectionDetails() const override;
    KNDocumentStatus status() const override;
    std::optional<KNDocumentState> savedState() const override;
    bool canPerform(KNDocumentAction action) const override;
    void perform(KNDocumentAction action) override;
    QString textForCopy() const override;
    bool insertText(const QString &text) override;

    QueryDocument *document() const { return m_document; }
    KNSQLEditor *editor() const { return m_editor; }
    KNEditorCompletion *completion() const { return m_completion; }
    KNEditorSignature *signature() const { return m_signature; }
    KNFindBar *findBar() const { return m_findBar; }
    KNResultsPane *resultsPane() const;
    MessagesView *messages() const;
    DatabaseBox *databaseBox() const { return m_databaseBox; }

public Q_SLOTS:
    /// Runs the selection, or everything if nothing is selected.
    void run();
    /// Runs the batch at the cursor.
    void runBatchAtCursor();
    /// Runs the batches that the last run left out because of an error.
    void runRemainingBatches();
    void cancel();
    /// Hides the results and messages, or shows them again.
    void toggleResults();
    /// Moves the focus between the editor and the visible results or messages.
    void showNextPane();
    void changeDatabase(const QString &name);

Q_SIGNALS:
    void runFinished(const QueryHistoryEntry &entry);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void arrange();
    void connectParts();
    bool isBlocked(const std::function<void()> &next);
    void start(const QueryRequest &request);
    void startUnedited(const QueryRequest &request);
    void startConfirmed(QueryRequest request);
    void showNewResults();
    void finishRun();
    void showOutcome();
    KNDocumentStatus::Outcome outcome() const;
    void showIdleLoss(const QStringList &losses);
    void askAboutLostSession(const KNError &error, const std::function<void()> &proceed);
    void showDatabase(const QString &name);

    KNSQLEditor *const m_editor;
    QueryDocument *const m_document;
    KNEditorCompletion *m_completion = nullptr;
    SyntaxCheck *m_syntaxCheck = nullptr;
    EditorCommands *m_commands = nullptr; ///< null if the server kind has no completion
    KNEditorSignature *m_signature = nullptr;
    KNFindBar *const m_findBar;
    DatabaseBox *const m_databaseBox;
    TransactionBar *const m_transactionBar;
    KNCautionBar *const m_lossBar; ///< shown while the session has no connection any more
    QueryResults *const m_results;
    ErrorMarks *const m_errorMarks;
    QTimer *const m_clock; ///< shows the elapsed time of a run
    const std::unique_ptr<QuerySession> m_session;
    std::unique_ptr<QueryRun> m_run; ///< the current or last one
    QString m_id;
    QString m_database;
    QDateTime m_runBegan;
    bool m_hadErrors = false; ///< in the last run; a check of the syntax does not count
};
