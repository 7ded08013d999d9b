#pragma once

#include "Database/VantorDBC.h"
#include "UI/Dialogs/KNWindowController.h"

#include <chrono>
#include <memory>

class ExportProgressViewController;
class ExportSelectionModel;
class QCheckBox;
class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;
class QTreeView;
struct ExportSelectableGroup;

/// Lets the user choose objects of a database and a file. Its export is a placeholder that only counts: no
/// file is written. Ends with 0, or with Finished after the whole export. On the UI thread.
class ExportToMSSQLWizard : public KNWindowController
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;
    static constexpr int Finished = 1; ///< return code

    ExportToMSSQLWizard(const Settings &databaseConnectionDetails, QWidget *parent);
    ~ExportToMSSQLWizard() override;

    /// Shows the host and the database, or that there is none.
    void updateServerDatabaseDisplay();
    /// Loads the objects in the background; the controls are disabled meanwhile.
    void loadDatabaseExportables();
    /// Begins the export with a file, unless nothing is chosen.
    void onNext();
    /// Ends the wizard, or stops the export.
    void onCancel();
    /// Counts in the background to 100, unless it is cancelled, and then ends the wizard.
    void startExport(const QString &targetPath);
    /// The time for which each step of the placeholder waits.
    void setStepTime(std::chrono::milliseconds stepTime) { m_stepTime = stepTime; }

    ExportSelectionModel *model() const { return m_model; }
    ExportProgressViewController *progress() const { return m_progress; }
    QString targetPath() const { return m_targetPath; }
    /// The page in front: 0 for the selection, 1 for the progress.
    int page() const;
    void reject() override { onCancel(); }

private:
    QWidget *makeSelectionPage();
    void actualLoadEntries();
    void showEntries(const QList<ExportSelectableGroup> &groups, const KNError &error);

    const Settings m_details;
    std::chrono::milliseconds m_stepTime{250};
    ExportSelectionModel *const m_model;
    QLabel *const m_display;
    QLabel *const m_status;
    QTreeView *const m_outline;
    QProgressBar *const m_loading;
    QCheckBox *const m_toFile;
    QComboBox *const m_compression;
    ExportProgressViewController *const m_progress;
    QStackedWidget *const m_pages;
    QPushButton *m_next = nullptr;
    QPushButton *m_cancel = nullptr;
    QString m_targetPath;
};
