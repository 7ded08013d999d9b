#pragma once

#include "Results/KNRowSearch.h"
#include "UI/KNSharedUIExport.h"

#include <QWidget>

class KNResultGridView;
class QCheckBox;
class QLabel;
class QLineEdit;
class QTimer;
class QToolButton;

/// Finds text in the displayed cells of a grid. Searches in the background; a new search replaces the
/// previous one. Hidden until opened; Escape hides it and returns the focus to the grid. On the UI thread.
class KNSHAREDUI_EXPORT KNResultFindBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultFindBar(KNResultGridView *grid, QWidget *parent = nullptr);
    ~KNResultFindBar() override;

    QLineEdit *field() const { return m_field; }
    QCheckBox *matchesCase() const { return m_matchesCase; }
    /// "2 of 5", "No matches" or "Searching…".
    QString message() const;
    bool isSearching() const { return m_cancelled != nullptr; }

public Q_SLOTS:
    /// Shows the bar and focuses the field.
    void open();
    void close();
    /// Makes the next match the current cell; continues with the first one after the last.
    void findNext();
    void findPrevious();
    /// Stops a running search.
    void cancel();

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    /// The step that follows a finished search.
    enum class Step { None, Nearest, Next, Previous };

    void arrange();
    void rowsChanged();
    void startSearch(Step step);
    void finishSearch(std::vector<KNRowSearch::Match> matches);
    void step(Step step);
    void say(const QString &text, bool isProblem = false);
    void sayPosition();
    KNRowSearch::Match current() const;

    KNResultGridView *const m_grid;
    QLineEdit *m_field;
    QCheckBox *m_matchesCase;
    QLabel *m_message;
    QToolButton *m_cancel;
    QTimer *m_pause; ///< while the user is typing, or rows arrive
    std::vector<KNRowSearch::Match> m_matches;
    bool m_isComplete = false;                      ///< m_matches belong to the text and the rows
    Step m_step = Step::None;                       ///< after the running or coming search
    std::shared_ptr<std::atomic<bool>> m_cancelled; ///< of the running search; null if none
};
