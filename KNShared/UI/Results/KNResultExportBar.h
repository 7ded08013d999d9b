#pragma once

#include "Export/ResultExporter.h"
#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QTimer;

/// Asks for a file, writes rows to it and shows the progress. Hidden while nothing is written. On the UI
/// thread.
class KNSHAREDUI_EXPORT KNResultExportBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultExportBar(QWidget *parent = nullptr);
    ~KNResultExportBar() override;

    /// Exports the rows. Only one file is written at a time: informs the user if an export is running.
    void exportRows(const ResultRows &rows);
    bool isExporting() const { return m_exporter != nullptr; }

public Q_SLOTS:
    void cancel();

private:
    void start(const ResultRows &rows, const QString &path);
    void finish(bool complete, const KNError &error, const QStringList &remarks);

    QLabel *m_label;
    QProgressBar *m_progress;
    QTimer *m_timer;
    std::shared_ptr<ResultExporter> m_exporter; ///< null while nothing is written
};
