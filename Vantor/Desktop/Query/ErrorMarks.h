#pragma once

#include "Desktop/Query/MessagesView.h"

#include <QObject>

class KNSQLEditor;

/// Marks the errors of a query's last run in its text, until the text is edited. On the UI thread.
class ErrorMarks : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this object.
    ErrorMarks(KNSQLEditor *editor, const MessagesView *messages, QObject *parent);

    /// Removes the marks. The positions of the errors to come belong to the present text.
    void beginRun();
    /// Removes the marks. The positions of the errors to come belong to the text of the run before.
    void continueRun();
    /// Marks what the messages name, or else the place of the error.
    void show(const KNError &error);
    /// Marks the errors of a check of the present text, in place of the marks before.
    void showErrorsOf(const KNResultSetHolder &results);
    /// Moves the cursor to a place that a message names.
    void goTo(const MessagesView::Target &target);

private:
    void mark(const MessagesView::Target &target);

    KNSQLEditor *const m_editor;
    const MessagesView *const m_messages;
    bool m_isEdited = false; ///< since the run
};
