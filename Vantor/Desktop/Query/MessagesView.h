#pragma once

#include "Database/KNResultSetHolder.h"
#include "Foundation/KNError.h"

#include <QPlainTextEdit>

#include <deque>
#include <variant>

class QTimer;

/// Shows the messages of a run: for each result its messages and its summary. Errors are red. A click on a
/// message, or Return, goes to its line. Long lists are inserted in parts, so that the window stays
/// responsive. On the UI thread.
class MessagesView : public QPlainTextEdit
{
    Q_OBJECT

public:
    explicit MessagesView(QWidget *parent = nullptr);

    /// Clears the view for a new run; showNewResults() shows its messages.
    void beginRun(const std::shared_ptr<KNResultSetHolder> &results);
    /// Shows the messages of results that have finished since the last call.
    void showNewResults();
    /// Ends the run; `error` is shown unless a result's messages contain it.
    void finishRun(const KNError &error);
    /// Adds a text of the program itself.
    void addText(const QString &text, bool isError);
    void clearMessages();

    int errorCount() const { return m_errorCount; }
    /// The text of the first error; null if there is none.
    QString firstError() const { return m_firstError; }
    /// The line (from 1) of the first error that has one and is not inside a procedure; 0 if there is none.
    int firstErrorLine() const { return m_firstErrorLine; }
    /// Whether all added texts are shown.
    bool isComplete() const { return m_pending.empty(); }

Q_SIGNALS:
    void errorCountChanged(int count);
    /// The user requested to see a line (from 1) of the whole text.
    void lineActivated(int line);

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Piece
    {
        std::variant<QString, DatabaseMessage> content; ///< converted to text when it is shown
        bool isError;
        int line; ///< 0 for none
    };

    void takeFinishedResults(bool all);
    void addResult(const KNDatabaseResultSet &result);
    void addMessage(const DatabaseMessage &message);
    void add(const Piece &piece);
    void showPending();
    void activate(const QTextCursor &cursor);

    std::shared_ptr<KNResultSetHolder> m_results;
    KNResultSetHolder::Position m_position = 0; ///< after the last result set that was read
    QList<KNDatabaseResultSetPtr> m_awaitingMessages;
    std::deque<Piece> m_pending;
    QTimer *m_showTimer;
    int m_errorCount = 0;
    bool m_isSilent = true; ///< the run has had only successful statements so far
    QString m_silentSummary;
    QString m_firstError;
    int m_firstErrorLine = 0;
};
