#pragma once

#include "Database/KNResultSetHolder.h"
#include "Database/VantorDBC.h"
#include "UI/KNSharedUIExport.h"
#include "UI/ResultEditing/KNResultEditSession.h"
#include "UI/Workspace/KNDocumentAction.h"

#include <QHash>
#include <QWidget>

#include <vector>

class KNNoticeBar;
class KNResultEditing;
class KNResultExportBar;
class KNResultSection;
class KNResultStack;
class KNResultTableModel;
class KNResultTabs;
class QLabel;
class QStackedWidget;
class QToolButton;

/// Shows the result sets of one run, each in a grid, as they arrive. On the UI thread.
class KNSHAREDUI_EXPORT KNResultsPane : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultsPane(QWidget *parent = nullptr);
    ~KNResultsPane() override;

    /// Starts to show the results of a new run instead of the previous ones. showNewResults() updates the
    /// view.
    void beginRun(const std::shared_ptr<KNResultSetHolder> &results, const VantorDBC &details);
    /// Shows results and rows that have arrived since the last call.
    void showNewResults();
    /// Shows the remaining results; no more will arrive.
    void finishRun();
    void clear();
    /// Lets the user edit the rows of a finished run's only result.
    void beginEditing(const KNResultEditSession &session);
    /// The edits of the only result; null if it has none or there are several.
    KNResultEditing *editing() const;
    /// The number of edited rows that are not applied.
    qsizetype pendingChanges() const;
    /// The number of rows shown so far in all results.
    qint64 rowCount() const;
    /// Describes the cells selected last; empty if there are none to describe.
    QString selectionSummary() const { return m_selectionSummary; }

    /// The number of results with columns; each has a section.
    int resultCount() const { return static_cast<int>(m_entries.size()); }
    /// The number of sections with widgets.
    int sectionCount() const { return static_cast<int>(m_sections.size()); }
    /// The section of a result, from 0; deleted when it has been out of view for long.
    KNResultSection *section(int result);
    /// The section with the focus, or else the first visible one; null if there are no results.
    KNResultSection *currentSection();
    /// Performs an action in the result that has the focus; false if none has, or it has no such action.
    bool perform(KNDocumentAction action);
    /// Explains an empty pane; empty while it shows results.
    QString emptyText() const;
    KNResultTabs *tabs() const { return m_tabs; }
    KNResultExportBar *exportBar() const { return m_exportBar; }
    KNNoticeBar *noticeBar() const { return m_noticeBar; }

    /// Whether results are shown as tabs instead of stacked. Also the default for panes created later.
    bool showsTabs() const { return m_showsTabs; }
    void setShowsTabs(bool shows);

Q_SIGNALS:
    void rowCountChanged(qint64 count);
    void selectionSummaryChanged();

private:
    struct Entry
    {
        std::unique_ptr<KNResultTableModel> model;
        QByteArray columns; ///< widths and more of a deleted section
        std::unique_ptr<KNResultEditing> editing;
    };

    bool takeNewResults();
    void showPlaces();
    void showPage();
    void showTab(int result);
    void dropSections(int firstKept, int lastKept);
    int wantedHeight(int result) const;
    void setSelectionSummary(const QString &text);
    void showEditing(int result, KNResultSection &section);
    void showWritten(qsizetype rows, const QString &path, const QStringList &remarks);

    std::shared_ptr<KNResultSetHolder> m_holder;
    VantorDBCPtr m_details;
    KNResultSetHolder::Position m_position = 0; ///< behind the result sets already taken
    std::vector<KNDatabaseResultSetPtr> m_awaitingColumns;
    std::vector<Entry> m_entries;
    QHash<int, KNResultSection *> m_sections; ///< by result
    int m_firstUnfinished = 0;                ///< all earlier results have all their rows
    qint64 m_rowCount = 0;
    QString m_selectionSummary;
    QString m_readOnlyReason; ///< of all results; null if it is not known or depends on the result
    bool m_showsTabs;
    bool m_isRunning = false;
    QLabel *m_empty; ///< shown instead of results while there are none
    KNResultTabs *m_tabs;
    QToolButton *m_mode;
    KNResultStack *m_stack;
    QWidget *m_page; ///< contains the section of the current tab
    QStackedWidget *m_views;
    KNResultExportBar *m_exportBar;
    KNNoticeBar *m_noticeBar;
};
