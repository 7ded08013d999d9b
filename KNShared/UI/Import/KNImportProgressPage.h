#pragma once

#include "UI/Import/KNImportPage.h"

#include <chrono>

class KNImportTextModel;
class QLabel;
class QProgressBar;
class QTableView;

/// Shows the progress of an import or a dry run, and its result.
class KNSHAREDUI_EXPORT KNImportProgressPage : public KNImportPage
{
    Q_OBJECT

public:
    explicit KNImportProgressPage(KNImportSession &session, QWidget *parent = nullptr);

    QString title() const override;
    void start(bool isDryRun);
    QString status() const;
    QTableView *faults() const { return m_faults; }

private:
    void showProgress(const KNImportRun::Progress &progress);
    void showOutcome(const KNImportOutcome &outcome);
    QString outcomeText(const KNImportOutcome &outcome) const;

    using Clock = std::chrono::steady_clock;

    bool m_isDryRun = false;
    Clock::time_point m_start;
    QProgressBar *const m_progress;
    QLabel *const m_status;
    KNImportTextModel *const m_faultModel;
    QTableView *const m_faults;
};
