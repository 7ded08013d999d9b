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
/// file is written, which the last page says. Ends with 0, or with GenerateScripts if the user goes on to the
/// export that writes scripts. On the UI thread.
class ExportToMSSQLWizard : public KNWindowController
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;
    static constexpr int GenerateScripts = 2; ///< return code

    ExportToMSSQLWizard(const Settings &databaseConnectionDetails, QWidget *parent);
    ~ExportToMSSQLWizard() override;

    /// Loads the objects in the background; the controls are disabled meanwhile.
    void loadDatabaseExportables();
    /// Begins the export with a file, unless nothing is chosen.
    void onNext();
    /// Ends the wizard, or stops the export.
    void onCancel();
    /// Counts in the background to 100, unless it is cancelled, and then shows the last page.
    void startExport(const QString &targetPath);
    /// The time for which each step of the placeholder waits.
    void setStepTime(std::chrono::milliseconds stepTime) { m_stepTime = stepTime; }

    ExportSelectionModel *model() const { return m_model; }
    ExportProgressViewController *progress() const { return m_progress; }
    QString targetPath() const { return m_targetPath; }
    /// The page in front: 0 for the selection, 1 for the progress, 2 for the end.
    int page() const;
    void reject() override { onCancel(); }

private:
    void updateServerDatabaseDisplay();
    QWidget *makeSelectionPage();
    QWidget *makeLastPage();
    void showEntries(const QList<ExportSelectableGroup> &groups, const KNError &error);
    void finish();

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
    QPushButton *m_scripts = nullptr;
    QString m_targetPath;
};
