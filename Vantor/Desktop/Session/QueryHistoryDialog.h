#pragma once

#include "Desktop/Session/QueryHistory.h"

#include <QDialog>

class KNSQLEditor;
class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QTreeView;
class QueryHistoryModel;
class VantorDBC;

/// Shows the query history of a connection and lets the user reuse a text. Not modal. On the UI thread.
class QueryHistoryDialog : public QDialog
{
    Q_OBJECT

public:
    /// `details` supplies keywords for highlighting. The history is loaded at once, in the background.
    QueryHistoryDialog(const QueryHistory &history, const VantorDBC &details, QWidget *parent = nullptr);

    /// Whether the history is loaded.
    bool isLoaded() const { return m_isLoaded; }

Q_SIGNALS:
    /// Requests that the text is inserted into the current tab.
    void insertRequested(const QString &text);
    void newTabRequested(const QString &text);

private:
    void arrange();
    void load();
    void showCurrent();
    QString currentText() const;
    void use(void (QueryHistoryDialog::*signal)(const QString &));
    void askForRemoval();

    const QueryHistory m_history;
    QueryHistoryModel *const m_model;
    QSortFilterProxyModel *const m_filter;
    QLineEdit *const m_search;
    QTreeView *const m_list;
    KNSQLEditor *const m_preview;
    QPushButton *const m_insert;
    QPushButton *const m_open;
    QPushButton *const m_remove;
    bool m_isLoaded = false;
};
