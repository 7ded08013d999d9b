#pragma once

#include "Database/KNResultSetHolder.h"
#include "Database/VantorDBC.h"
#include "UI/KNSharedUIExport.h"

#include <QWidget>

/// Shows the result sets of one run, each in a grid, while they arrive. On the UI thread.
class KNSHAREDUI_EXPORT KNResultsPane : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultsPane(QWidget *parent = nullptr);

    /// Shows the results of a run that begins, instead of those before. The pane looks into the holder from
    /// time to time until finishRun().
    void beginRun(const std::shared_ptr<KNResultSetHolder> &results, const VantorDBC &details);
    /// Nothing comes any more.
    void finishRun();
    void clear();
    /// Rows that are shown so far, over all results.
    qint64 rowCount() const;

Q_SIGNALS:
    void rowCountChanged(qint64 count);
};
