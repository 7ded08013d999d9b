#pragma once

#include "Desktop/Query/ErrorMarks.h"
#include "Desktop/Query/QueryRun.h"

#include <QTimer>

class QueryResults;

/// Has the server check the syntax of a query's text without running it: on request, and half a second after
/// the last key if the preferences say so. Uses a session of the pool. On the UI thread, which never waits.
class SyntaxCheck : public QObject
{
    Q_OBJECT

public:
    /// Returns the settings of the tab's connection with its current database.
    using Settings = std::function<std::shared_ptr<const VantorDBC>()>;

    /// All outlive this object.
    SyntaxCheck(KNSQLEditor *editor, QueryResults *results, ErrorMarks *marks, Settings settings,
                QObject *parent);

    /// Checks the selection, or everything if nothing is selected, and shows the outcome as a run does.
    void check();
    /// Drops the outcome of a check that has not finished: the messages are now those of a run.
    void noteRun();
    bool isBusy() const { return m_isBusy; }

private:
    struct Outcome;

    void noteEdit();
    void checkTyped();
    void start(const QueryRequest &request, bool isRequested);
    void finish(const Outcome &outcome, bool isRequested);
    void show(const Outcome &outcome);

    KNSQLEditor *const m_editor;
    QueryResults *const m_results;
    ErrorMarks *const m_marks;
    const Settings m_settings;
    QTimer m_pause;           ///< runs out half a second after the last key
    int m_generation = 0;     ///< of the text and of runs
    bool m_isBusy = false;    ///< one session at most is used
    bool m_isAwaited = false; ///< a check on request begins when the present one has finished
    bool m_isOffline = false; ///< no session could be opened: only a request or a run tries again
};
