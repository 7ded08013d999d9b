#pragma once

#include <QTabWidget>

class KNError;
class KNResultSetHolder;
class KNResultsPane;
class MessagesView;
class VantorDBC;

/// The results and the messages of a query's runs, as two tabs. On the UI thread.
class QueryResults : public QTabWidget
{
    Q_OBJECT

public:
    explicit QueryResults(QWidget *parent = nullptr);

    KNResultsPane *pane() const { return m_pane; }
    MessagesView *messages() const { return m_messages; }
    /// Whether the run has a result with columns.
    bool showsRows() const { return m_showsRows; }

    void beginRun(const std::shared_ptr<KNResultSetHolder> &results, const VantorDBC &details);
    /// Shows results that have arrived since the last call; those with rows come to the front once.
    void showNewResults();
    void finishRun(const KNError &error);
    /// Shows the messages in front.
    void showMessages();
    /// Focuses the grid of the current result, or the messages.
    void focusContent();

private:
    KNResultsPane *const m_pane;
    MessagesView *const m_messages;
    bool m_showsRows = false;
};
