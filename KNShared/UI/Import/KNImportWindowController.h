#pragma once

#include "UI/Dialogs/KNWindowController.h"
#include "UI/Import/KNImportTargetPage.h"

class KNImportFilePage;
class KNImportOptionsPage;
class KNImportProgressPage;
class QDialogButtonBox;
class QLabel;
class QPushButton;
class QStackedWidget;

/// The import wizard: file, table and columns, options, progress and result. Ends with 1 if rows were
/// imported. On the UI thread.
class KNSHAREDUI_EXPORT KNImportWindowController : public KNWindowController
{
    Q_OBJECT

public:
    using Settings = KNImportSession::Settings;

    struct Start
    {
        QString path;  ///< of the file; null to ask
        QString table; ///< its name, perhaps with a schema; null to ask
    };

    /// `createTable` shows the connector's dialog for a new table; empty for none.
    KNImportWindowController(const Settings &settings, const Start &start,
                             KNImportTargetPage::CreateTable createTable, QWidget *parent);
    ~KNImportWindowController() override;

    /// Cancels a running import first.
    void reject() override;

    KNImportSession *session() const { return m_session; }
    KNImportFilePage *filePage() const { return m_filePage; }
    KNImportTargetPage *targetPage() const { return m_targetPage; }
    KNImportOptionsPage *optionsPage() const { return m_optionsPage; }
    KNImportProgressPage *progressPage() const { return m_progressPage; }
    int currentPage() const;

public Q_SLOTS:
    void goBack();
    /// Shows the next page; starts the import after the options.
    void goOn();
    void runDry();

private:
    void arrange();
    void showPage(int index);
    void begin(bool isDryRun);
    void finish(const KNImportOutcome &outcome);
    void update();
    KNImportPage *page() const;

    KNImportSession *const m_session;
    KNImportFilePage *const m_filePage;
    KNImportTargetPage *const m_targetPage;
    KNImportOptionsPage *const m_optionsPage;
    KNImportProgressPage *const m_progressPage;
    QStackedWidget *const m_pages;
    QLabel *const m_title;
    QPushButton *m_back = nullptr;
    QPushButton *m_dryRun = nullptr;
    QPushButton *m_next = nullptr;
    QPushButton *m_cancel = nullptr;
    bool m_isDryRun = false;
    bool m_hasImported = false;
};
