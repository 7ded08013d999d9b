#pragma once

#include "Import/KNImportFileAnalysis.h"
#include "Import/KNImportRun.h"
#include "UI/KNSharedUIExport.h"

#include <QObject>

#include <memory>

/// One import as the pages of the wizard prepare it. Reads files and the catalog, and imports, in the
/// background; results of earlier requests are dropped. On the UI thread.
class KNSHAREDUI_EXPORT KNImportSession : public QObject
{
    Q_OBJECT

public:
    using Settings = std::shared_ptr<const VantorDBC>;

    static constexpr quint64 PreviewedRows = 1000;

    explicit KNImportSession(Settings settings, QObject *parent = nullptr);
    ~KNImportSession() override;

    const Settings &settings() const { return m_settings; }
    const KNDatabaseImportHelper &helper() const { return *m_helper; }

    /// The file and the choices of the pages.
    KNImportPlan plan;

    /// Reads the first rows of a file, or all of them; emits analysed().
    void analyse(const KNImportFile &file, quint64 mostRows);
    bool isAnalysing() const { return m_isAnalysing; }
    /// The last result; without columns before the first one.
    const KNImportFileAnalysis &analysis() const { return m_analysis; }

    /// Reads the names of a workbook's sheets; emits sheetsRead().
    void readSheets(const QString &path);
    /// Reads the tables of the database; emits tablesLoaded().
    void loadTables();
    const QList<KNImportTableModelPtr> &tables() const { return m_tables; }

    /// Imports as planned, or converts the values only; emits progressed() and finished().
    void start(bool isDryRun);
    bool isRunning() const { return m_run != nullptr; }
    /// Ends the run; finished() follows.
    void cancel();

Q_SIGNALS:
    void analysed();
    void sheetsRead(const QStringList &sheets);
    void tablesLoaded();
    void progressed(const KNImportRun::Progress &progress);
    void finished(const KNImportOutcome &outcome);

private:
    const Settings m_settings;
    const std::shared_ptr<const KNDatabaseImportHelper> m_helper;
    KNImportFileAnalysis m_analysis;
    std::shared_ptr<std::atomic<bool>> m_analysisCancelled; ///< of the latest analysis
    bool m_isAnalysing = false;
    QList<KNImportTableModelPtr> m_tables;
    std::shared_ptr<KNImportRun> m_run; ///< null unless one is running
};
