#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"

#include <QElapsedTimer>
#include <QWidget>

#include <functional>

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
    /// Saves, asking for a file where there is none; `saved` is called when that has been done.
    void save(std::function<void()> saved = {});
    void saveAs(std::function<void()> saved = {});

    /// The settings, with the database that the tab has come to.
    std::shared_ptr<const VantorDBC> databaseConnectionDetails() const;
    void prepareToClose(std::function<void()> proceed);
    void prepareToEndSession(std::function<void()> proceed);

    bool isRunning() const;
    QueryTabStatus status() const;

public Q_SLOTS:
    /// Runs the selection, or everything when nothing is selected.
    void run();
    /// Runs the batch in which the cursor stands.
    void runBatchAtCursor();
    void cancel();

Q_SIGNALS:
    /// Name, file or unsaved mark have changed.
    void titleChanged();
    void statusChanged(const QueryTabStatus &status);
};
