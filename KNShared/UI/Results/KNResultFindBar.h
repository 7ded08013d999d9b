#pragma once

#include "Results/KNRowSearch.h"
#include "UI/Editor/KNSearchBar.h"

#include <atomic>
#include <memory>
#include <vector>

class KNResultGridView;
class QCheckBox;
class QTimer;
class QToolButton;

/// Finds text in the displayed cells of a grid. Searches in the background; a new search replaces the
/// previous one. On the UI thread.
class KNSHAREDUI_EXPORT KNResultFindBar : public KNSearchBar
{
    Q_OBJECT

public:
    explicit KNResultFindBar(KNResultGridView *grid, QWidget *parent = nullptr);
    ~KNResultFindBar() override;

    QCheckBox *matchesCase() const { return m_matchesCase; }
    bool isSearching() const { return m_cancelled != nullptr; }

public Q_SLOTS:
    void open() override;
    void close() override;
    /// Makes the next match the current cell.
    void findNext() override;
    void findPrevious() override;
    /// Stops a running search.
    void cancel();

private:
    /// The step that follows a finished search.
    enum class Step { None, Nearest, Next, Previous };

    void arrange();
    void rowsChanged();
    void startSearch(Step step);
    void finishSearch(std::vector<KNRowSearch::Match> matches);
    void step(Step step);
    void sayPosition();
    KNRowSearch::Match current() const;

    KNResultGridView *const m_grid;
    QCheckBox *m_matchesCase;
    QToolButton *m_cancel;
    QTimer *m_pause; ///< while the user is typing, or rows arrive
    std::vector<KNRowSearch::Match> m_matches;
    bool m_isComplete = false;                      ///< m_matches belong to the text and the rows
    Step m_step = Step::None;                       ///< after the running or coming search
    std::shared_ptr<std::atomic<bool>> m_cancelled; ///< of the running search; null if none
};
