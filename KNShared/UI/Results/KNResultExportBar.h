#pragma once

#include "Export/ResultExporter.h"
#include "UI/KNSharedUIExport.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QTimer;

/// Asks for a format and a file, writes rows to it and shows the progress. Hidden while nothing is written.
/// On the UI thread.
class KNSHAREDUI_EXPORT KNResultExportBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNResultExportBar(QWidget *parent = nullptr);
    ~KNResultExportBar() override;

    /// Exports the rows, of whose columns the grid hides some. Only one file is written at a time: informs
    /// the user if an export is running.
    void exportRows(const ResultRows &rows, qsizetype hiddenColumns = 0);
    bool isExporting() const { return m_exporter != nullptr; }

public Q_SLOTS:
    void cancel();

Q_SIGNALS:
    /// Emitted when a file has been written; `remarks` describe what it could not hold.
    void written(qsizetype rows, const QString &path, const QStringList &remarks);

private:
    void chooseFile(const ResultRows &rows, const QString &extension, const CsvOptions &csv);
    void start(const ResultRows &rows, const QString &path, const CsvOptions &csv);
    void finish(bool complete, const KNError &error, const QStringList &remarks);

    QLabel *m_label;
    QProgressBar *m_progress;
    QTimer *m_timer;
    QString m_path;                             ///< of the file that is being written
    std::shared_ptr<ResultExporter> m_exporter; ///< null while nothing is written
};
