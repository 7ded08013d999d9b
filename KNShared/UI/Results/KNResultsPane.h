#pragma once

#include "Database/KNResultSetHolder.h"
#include "Database/VantorDBC.h"
#include "UI/KNSharedUIExport.h"

#include <QHash>
#include <QWidget>

#include <vector>

class KNResultExportBar;
class KNResultSection;
class KNResultStack;
class KNResultTableModel;
class KNResultTabs;
class QStackedWidget;
class QToolButton;

/// Shows the result sets of one run, each in a grid, while they arrive. On the UI thread.
class KNSHAREDUI_EXPORT KNResultsPane : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultsPane(QWidget *parent = nullptr);
    ~KNResultsPane() override;

    /// Shows the results of a run that begins, instead of those before, at each call of showNewResults().
    void beginRun(const std::shared_ptr<KNResultSetHolder> &results, const VantorDBC &details);
    /// Shows the results and rows that have arrived since the last call.
    void showNewResults();
    /// Shows the rest: no more results will arrive.
    void finishRun();
    void clear();
    /// Rows that are shown so far, over all results.
    qint64 rowCount() const;

    /// Results with columns, of which each has a section.
    int resultCount() const { return static_cast<int>(m_entries.size()); }
    /// How many sections have widgets.
    int sectionCount() const { return static_cast<int>(m_sections.size()); }
    /// The section of a result, from 0; it goes when it is out of sight for long.
    KNResultSection *section(int result);
    /// The section that has the focus, or else the first one in sight; null when there are no results.
    KNResultSection *currentSection();
    KNResultTabs *tabs() const { return m_tabs; }
    KNResultExportBar *exportBar() const { return m_exportBar; }

    /// Whether results are tabs instead of one below the other. Remembered for all panes that are made later.
    bool showsTabs() const { return m_showsTabs; }
    void setShowsTabs(bool shows);

Q_SIGNALS:
    void rowCountChanged(qint64 count);

private:
    struct Entry
    {
        std::unique_ptr<KNResultTableModel> model;
        QByteArray columnWidths; ///< of a section that is gone
    };

    bool takeNewResults();
    void showPlaces();
    void showTab(int result);
    void dropSections(int firstKept, int lastKept);
    int wantedHeight(int result) const;

    std::shared_ptr<KNResultSetHolder> m_holder;
    VantorDBCPtr m_details;
    KNResultSetHolder::Position m_position = 0; ///< behind the result sets that were taken
    std::vector<KNDatabaseResultSetPtr> m_awaitingColumns;
    std::vector<Entry> m_entries;
    QHash<int, KNResultSection *> m_sections; ///< by result
    int m_firstUnfinished = 0;                ///< results before it have all their rows
    qint64 m_rowCount = 0;
    bool m_showsTabs;
    bool m_isRunning = false;
    KNResultTabs *m_tabs;
    QToolButton *m_mode;
    KNResultStack *m_stack;
    QWidget *m_page; ///< holds the section of the current tab
    QStackedWidget *m_views;
    KNResultExportBar *m_exportBar;
};
