#pragma once

#include "Results/KNCellStatistics.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

class KNResultGridView;
class QTimer;

/// Describes the selected cells of a grid: "Count: 3 · Sum: 6 · Average: 2 · Minimum: 1 · Maximum: 3". Reads
/// the cells in the background; a new selection replaces the previous one. On the UI thread.
class KNSHAREDUI_EXPORT KNSelectionSummary : public QObject
{
    Q_OBJECT

public:
    explicit KNSelectionSummary(KNResultGridView *grid);
    ~KNSelectionSummary() override;

    /// Empty while fewer than two cells are selected.
    QString text() const { return m_text; }
    bool isCalculating() const { return m_cancelled != nullptr; }

Q_SIGNALS:
    void changed();

private:
    static constexpr qint64 ManyCells = 100'000; ///< take long enough to be announced

    void selectionChanged();
    void calculate();
    QString textOf(const KNCellStatistics &statistics) const;
    void show(const QString &text);

    KNResultGridView *const m_grid;
    QTimer *const m_pause; ///< while the user is still selecting
    QString m_text;
    std::shared_ptr<std::atomic<bool>> m_cancelled; ///< of the running calculation; null if none
};
