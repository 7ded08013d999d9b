#pragma once

#include "Database/KNResultSetHolder.h"
#include "Foundation/KNError.h"

#include <QPlainTextEdit>

#include <deque>
#include <variant>

class QTimer;

/// Shows the messages of a run: for each result its messages and its summary. Errors are red. A click on a
/// message, or Return, goes to what it is about or follows its link. Long lists are inserted in parts, so
/// that the window stays responsive. On the UI thread.
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
    /// Adds a text of the program itself, followed by a link.
    void addLink(const QString &text, const QString &link);
    void clearMessages();

    int errorCount() const { return m_errorCount; }
    /// The text of the first error; null if there is none.
    QString firstError() const { return m_firstError; }
    /// The part of the whole text that a message is about.
    struct Target
    {
        KNRange range = {};  ///< not found if only the line is known
        int line = 0;        ///< from 1; 0 if not known
        bool isLink = false; ///< the target of addLink() instead
    };
    static Target targetOf(const DatabaseMessage &message);
    /// The targets of the errors, of the first ones if there are very many.
    const QList<Target> &errorTargets() const { return m_errorTargets; }
    /// Whether all added texts are shown.
    bool isComplete() const { return m_pending.empty(); }

Q_SIGNALS:
    void errorCountChanged(int count);
    /// The user requested to see what a message is about.
    void targetActivated(const MessagesView::Target &target);
    void linkActivated();

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Piece
    {
        std::variant<QString, DatabaseMessage> content; ///< converted to text when it is shown
        bool isError = false;
        Target target = {};
        QString link = {}; ///< shown behind the content
    };

    void takeFinishedResults(bool all);
    void addResult(const KNDatabaseResultSet &result);
    void addMessage(const DatabaseMessage &message);
    void add(const Piece &piece);
    void showPending();
    void showPiece(const Piece &piece, QTextCursor &cursor);
    int numberOf(const Target &target);
    const Target *targetAt(const QTextCursor &cursor) const;
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
    QList<Target> m_errorTargets;
    QList<Target> m_targets; ///< of the shown messages; the state of a text block is a number in it from 1
};
